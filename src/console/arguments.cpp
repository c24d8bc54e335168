#include "console/arguments.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <sstream>

#include "system/text.h"
#include "views/terminal/streams.h"

namespace coffrelune::console {
namespace {

constexpr int wrongUse = 2;
constexpr const char* exitStatuses =
    "État de sortie : 0 sans erreur ou rien à faire, 1 erreurs (ou différences trouvées),\n"
    "2 mauvais usage ou réglages, 3 interrompu ou refusé.";

std::optional<OperationKind> kindNamed(const std::string& word) {
    for (const OperationKind kind : allKinds) {
        if (word == wordsOf(kind).word) return kind;
    }
    return std::nullopt;
}

std::string versionText() {
    const std::string minor = "0" + std::to_string(COFFRELUNE_VERSION_MINOR);
    return "Coffrelune Version " + std::to_string(COFFRELUNE_VERSION_MAJOR) + "." +
           minor.substr(minor.size() - 2);
}

void speakFrench(CLI::App& app) {
    const auto formatter = std::make_shared<CLI::Formatter>();
    formatter->label("Usage", "Utilisation ");
    formatter->label("SUBCOMMAND", "COMMANDE");
    formatter->label("SUBCOMMANDS", "COMMANDES");
    formatter->column_width(26);
    app.formatter(formatter);
    app.set_help_flag("-h,--help", "Affiche cette aide");
    // The same words on every system: "/source" is no option on any.
    app.allow_windows_style_options(false);
}

// A variable that a script forgot to set must not turn into a run of something else.
CLI::Validator notEmpty() {
    return CLI::Validator(
        [](const std::string& value) { return std::string(value.empty() ? "vide" : ""); }, "");
}

CLI::Validator knownKind() {
    return CLI::Validator(
        [](const std::string& name) { return std::string(kindNamed(name) ? "" : "type"); }, "");
}

// What every command has.
CLI::App* addCommand(CLI::App& app, Arguments& arguments, Command command, const char* name,
                     const char* description) {
    CLI::App* added = app.add_subcommand(name, description);
    added->group("Commandes ");
    added->set_help_flag("-h,--help", "Affiche cette aide");
    added
        ->add_option("--config", arguments.configuration,
                     "Configuration ; sinon celle que retient la clé Config, ou General")
        ->type_name("NOM")
        ->check(notEmpty());
    added->add_flag("--json", arguments.json, "Affiche le résultat en un objet JSON");
    added->callback([&arguments, command] { arguments.command = command; });
    added->footer(exitStatuses);
    return added;
}

void addRunOptions(CLI::App* command, Arguments& arguments) {
    command
        ->add_option("--source", arguments.source,
                     "Ce répertoire ou ce fichier, sans fichier de réglages : seuls les fichiers\n"
                     "modifiés comptent, et une erreur n'arrête pas la suite")
        ->type_name("CHEMIN")
        ->check(notEmpty());
    command
        ->add_option("--destination", arguments.destination,
                     "Répertoire où la copie de la source porte le nom de celle-ci")
        ->type_name("CHEMIN")
        ->check(notEmpty());
    command->add_flag("--journal", arguments.journal, "Affiche le journal de l'opération");
}

void addReplaceOptions(CLI::App* command, Arguments& arguments) {
    command->add_flag("--ecraser", arguments.overwrite,
                      "Remplace les fichiers existants sans demander");
    command->add_flag("--conserver", arguments.keep, "Garde les fichiers existants sans demander");
}

void addCommands(CLI::App& app, Arguments& arguments) {
    CLI::App* backup = addCommand(app, arguments, Command::backup, "sauvegarder",
                                  "Sauvegarde les lignes sélectionnées");
    addRunOptions(backup, arguments);
    addReplaceOptions(backup, arguments);
    backup->add_flag("--confirmer", arguments.confirmed,
                     "Copie l'arborescence seule (ArbreMode) sans demander");
    backup->add_flag("--confirmer-source", arguments.originalConfirmed,
                     "La source est la bonne, même si son volume, un montage ou une restauration\n"
                     "inachevée faisait garder les fichiers excédentaires");

    CLI::App* restore = addCommand(app, arguments, Command::restore, "restaurer",
                                   "Remet les copies à leur place d'origine");
    addRunOptions(restore, arguments);
    addReplaceOptions(restore, arguments);
    restore->add_flag("--confirmer", arguments.confirmed,
                      "Restaure sans les deux questions de confirmation");

    CLI::App* compare = addCommand(app, arguments, Command::compare, "comparer",
                                   "Liste ce qui serait copié, sans rien copier");
    addRunOptions(compare, arguments);
    compare->add_flag("--inverse", arguments.reversed,
                      "Compare la destination à la source, comme pour une restauration");

    CLI::App* journal = addCommand(app, arguments, Command::journal, "journal",
                                   "Montre la dernière liste d'erreurs");
    journal
        ->add_option_function<std::string>(
            "--type", [&](const std::string& name) { arguments.kind = *kindNamed(name); },
            "sauvegarde, restauration ou comparaison")
        ->type_name("TYPE")
        ->check(knownKind());
    addCommand(app, arguments, Command::results, "resultats",
               "Résume les dernières opérations de chaque sorte");
}

std::string unknownWords(const CLI::App& app) {
    std::string words;
    for (const std::string& word : app.remaining(true)) words += (words.empty() ? "" : " ") + word;
    return words;
}

// The parser's own messages are in English.
std::string frenchMessage(const CLI::App& app, const CLI::ParseError& error,
                          const std::string& firstWord) {
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
        case CLI::ExitCodes::ExtrasError:
            return "Option ou argument inconnu : " + unknownWords(app);
        case CLI::ExitCodes::RequiredError:
            if (firstWord.rfind('-', 0) == 0) return "Option inconnue : " + firstWord;
            if (!firstWord.empty()) return "Commande inconnue : " + firstWord;
            return "Indiquez une commande.";
        case CLI::ExitCodes::ArgumentMismatch:
            return "Une option attend une valeur, ou en a reçu plusieurs.";
        case CLI::ExitCodes::ValidationError:
            if (std::string(error.what()).rfind("--type", 0) != 0) {
                return "Une option attend une valeur qui ne soit pas vide.";
            }
            return "--type attend sauvegarde, restauration ou comparaison.";
        default:
            return "La ligne de commande n'a pas été comprise.";
    }
}

// Empty when the options go together.
std::string contradiction(const Arguments& arguments) {
    if (arguments.source.empty() != arguments.destination.empty()) {
        return "--source et --destination vont ensemble.";
    }
    if (arguments.direct() && !arguments.configuration.empty()) {
        return "--config et --source s'excluent.";
    }
    if (arguments.overwrite && arguments.keep) return "--ecraser et --conserver s'excluent.";
    return {};
}

int refuse(const std::string& message) {
    streams::write(
        streams::Stream::errors,
        visibleControls(message) + "\n« coffrelune-console --help » montre l'utilisation.\n");
    return wrongUse;
}

int show(const CLI::App& app, const CLI::Success& asked) {
    std::ostringstream text;
    const int exitStatus = app.exit(asked, text, text);
    streams::write(streams::Stream::output, text.str());
    return exitStatus;
}

}  // namespace

std::optional<Arguments> parseArguments(const std::vector<std::string>& words, int& exitStatus) {
    Arguments arguments;
    CLI::App app("Coffrelune dans un terminal : sauvegarde, restauration et comparaison",
                 "coffrelune-console");
    speakFrench(app);
    app.set_version_flag("--version", versionText(), "Affiche la version");
    app.require_subcommand(1);
    app.footer(exitStatuses);
    addCommands(app, arguments);
    try {
        // Taken from its end; the program's name is no argument.
        std::vector<std::string> reversed(words.rbegin(), words.rend());
        if (!reversed.empty()) reversed.pop_back();
        app.parse(std::move(reversed));
    } catch (const CLI::Success& asked) {
        exitStatus = show(app, asked);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        exitStatus = refuse(frenchMessage(app, error, words.size() > 1 ? words[1] : ""));
        return std::nullopt;
    }
    const std::string wrong = contradiction(arguments);
    if (wrong.empty()) return arguments;
    exitStatus = refuse(wrong);
    return std::nullopt;
}

}  // namespace coffrelune::console
