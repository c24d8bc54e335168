#include "console/argument_parts.h"

namespace coffrelune::console {

CLI::Validator notEmpty() {
    return CLI::Validator(
        [](const std::string& value) {
            return std::string(value.empty() ? "Une option attend une valeur qui ne soit pas vide."
                                             : "");
        },
        "");
}

std::string examples(const std::vector<std::string>& commands) {
    std::string text = commands.size() > 1 ? "Exemples :\n" : "Exemple :\n";
    for (const std::string& command : commands) text += "  coffrelune-console " + command + "\n";
    return text + "\n" + exitStatuses;
}

CLI::App* addWord(CLI::App& app, const char* name, const char* description) {
    CLI::App* added = app.add_subcommand(name, description);
    added->group("Commandes ");
    added->set_help_flag("-h,--help", "Affiche cette aide");
    added->footer(exitStatuses);
    return added;
}

void addConfiguration(CLI::App* command, Arguments& arguments) {
    command
        ->add_option("--config", arguments.configuration,
                     "Configuration ; sinon celle que retient la clé Config, ou General")
        ->type_name("NOM")
        ->check(notEmpty());
}

void addJson(CLI::App* command, Arguments& arguments) {
    command->add_flag("--json", arguments.json, "Affiche le résultat en un objet JSON");
}

CLI::App* addCommand(CLI::App& app, Arguments& arguments, Command command, const char* name,
                     const char* description) {
    CLI::App* added = addWord(app, name, description);
    addConfiguration(added, arguments);
    addJson(added, arguments);
    added->callback([&arguments, command] { arguments.command = command; });
    return added;
}

}  // namespace coffrelune::console
