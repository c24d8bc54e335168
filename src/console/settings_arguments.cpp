// The commands that show and change the settings.
#include <algorithm>
#include <array>
#include <set>

#include "console/argument_parts.h"
#include "system/date_time.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

CLI::App* addAction(CLI::App* command, Arguments& arguments, Action action, const char* name,
                    const char* description) {
    CLI::App* added = addWord(*command, name, description);
    added->callback([&arguments, action] { arguments.edit.action = action; });
    return added;
}

CLI::Option* addName(CLI::App* action, std::string& name, const char* word,
                     const char* description) {
    return action->add_option(word, name, description)->type_name("")->required();
}

CLI::Validator lineNumber() {
    return CLI::Validator(
        [](const std::string& text) {
            const bool digits =
                std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
            const bool number = digits && !text.empty() && text.size() < 5 && text[0] != '0';
            return std::string(number ? "" : "Une ligne se nomme par son numéro : 1, 2, 3…");
        },
        "");
}

void addErase(CLI::App* command, Arguments& arguments) {
    Arguments::SettingsEdit& edit = arguments.edit;
    CLI::App* erase =
        addAction(command, arguments, Action::erase, "effacer",
                  "Efface une configuration et ses listes d'erreurs, mais aucun fichier\n"
                  "sauvegardé ; celle en cours ne s'efface pas");
    addName(erase, edit.name, "NOM", "Configuration à effacer");
    erase->add_flag("--confirmer", arguments.confirmed, "Efface sans demander");
    erase->footer(examples({"configurations effacer Essai --confirmer"}));
}

void addConfigurations(CLI::App& app, Arguments& arguments) {
    Arguments::SettingsEdit& edit = arguments.edit;
    CLI::App* command =
        addWord(app, "configurations", "Montre et change la liste des configurations");
    command->callback([&arguments] { arguments.command = Command::configurations; });
    addJson(command, arguments);
    command->footer(examples({"configurations", "configurations ajouter Travail",
                              "configurations effacer Essai --confirmer"}));

    addJson(addAction(command, arguments, Action::show, "lister",
                      "Nomme les configurations (ce que fait la commande sans autre mot)"),
            arguments);

    CLI::App* add = addAction(command, arguments, Action::add, "ajouter",
                              "Ajoute une configuration sans ligne ; elle copie tous les fichiers\n"
                              "à chaque fois, jusqu'à « options definir Modifie=oui »");
    addName(add, edit.name, "NOM", "Nom de la nouvelle configuration");
    add->add_option("--description", edit.text, "Ce qu'elle sauvegarde")->type_name("TEXTE");
    add->footer(examples({"configurations ajouter Photos --description \"Disque USB\""}));

    CLI::App* rename =
        addAction(command, arguments, Action::rename, "renommer",
                  "Donne un autre nom à une configuration et à ses listes d'erreurs");
    addName(rename, edit.name, "NOM", "Configuration à renommer");
    addName(rename, edit.newName, "NOUVEAU", "Son nouveau nom");
    rename->footer(examples({"configurations renommer Travail Bureau"}));

    CLI::App* copy =
        addAction(command, arguments, Action::duplicate, "dupliquer",
                  "Ajoute une configuration qui a les lignes et les choix d'une autre");
    addName(copy, edit.name, "NOM", "Configuration à reprendre");
    addName(copy, edit.newName, "NOUVEAU", "Nom de la nouvelle configuration");
    copy->footer(examples({"configurations dupliquer Travail Vacances"}));

    addErase(command, arguments);

    CLI::App* describe =
        addAction(command, arguments, Action::describe, "decrire",
                  "Décrit une configuration ; un texte vide efface la description");
    addName(describe, edit.name, "NOM", "Configuration à décrire");
    describe->add_option("TEXTE", edit.text, "Ce qu'elle sauvegarde")->type_name("")->required();
    describe->footer(examples({"configurations decrire Travail \"Documents du bureau\""}));

    CLI::App* choose = addAction(command, arguments, Action::select, "choisir",
                                 "Prend une configuration quand aucune n'est nommée");
    addName(choose, edit.name, "NOM", "Configuration à prendre");
    choose->footer(examples({"configurations choisir Travail"}));
    command->require_subcommand(0, 1);
}

void addSelection(CLI::App* command, Arguments& arguments, Action action, const char* name,
                  const char* description) {
    CLI::App* added = addAction(command, arguments, action, name, description);
    added->add_option("LIGNE", arguments.edit.lines, "Numéros des lignes")
        ->type_name("")
        ->check(lineNumber())
        ->required();
    addConfiguration(added, arguments);
    added->footer(examples({std::string("lignes ") + name + " 1 3 --config Travail"}));
}

CLI::App* addLineAction(CLI::App* command, Arguments& arguments, Action action, const char* name,
                        const char* description) {
    CLI::App* added = addAction(command, arguments, action, name, description);
    added->add_option("LIGNE", arguments.edit.lines, "Numéro de la ligne")
        ->type_name("")
        ->check(lineNumber())
        ->expected(1)
        ->required();
    addConfiguration(added, arguments);
    return added;
}

void addExclusions(CLI::App* command, Arguments& arguments) {
    Arguments::SettingsEdit& edit = arguments.edit;
    CLI::App* added = addLineAction(command, arguments, Action::exclude, "exclusions",
                                    "Montre ou change ce qu'une ligne laisse de côté");
    added
        ->add_option("--sous-repertoires", edit.exclusionMode,
                     "tous : sauvegarde tous les sous-répertoires ; aucun : les fichiers du\n"
                     "répertoire seul ; sauf : tous sauf ceux de la liste")
        ->type_name("CHOIX")
        ->check(CLI::Validator(
            [](const std::string& text) {
                const bool known = text == "tous" || text == "aucun" || text == "sauf";
                return std::string(known ? "" : "--sous-repertoires attend tous, aucun ou sauf.");
            },
            ""));
    added
        ->add_option("--ajouter", edit.added,
                     "Ajoute ce répertoire à la liste, et choisit « sauf »")
        ->type_name("CHEMIN")
        ->allow_extra_args(false)
        ->check(notEmpty());
    added->add_option("--retirer", edit.removed, "Retire ce répertoire de la liste")
        ->type_name("CHEMIN")
        ->allow_extra_args(false)
        ->check(notEmpty());
    added->add_flag("--vider", edit.clears, "Vide d'abord la liste");
    addJson(added, arguments);
    added->footer(
        examples({"lignes exclusions 1", "lignes exclusions 1 --ajouter ~/Documents/Brouillons",
                  "lignes exclusions 1 --sous-repertoires aucun"}));
}

void addLines(CLI::App& app, Arguments& arguments) {
    Arguments::SettingsEdit& edit = arguments.edit;
    CLI::App* command = addCommand(app, arguments, Command::lines, "lignes",
                                   "Montre et change les lignes d'une configuration");
    command->footer(examples({"lignes --config Travail",
                              "lignes definir 1 --source ~/Documents --destination /media/cle",
                              "lignes selectionner 1"}));

    CLI::App* show = addAction(command, arguments, Action::show, "montrer",
                               "Montre les lignes (ce que fait la commande sans autre mot)");
    addConfiguration(show, arguments);
    addJson(show, arguments);

    CLI::App* set = addLineAction(command, arguments, Action::set, "definir",
                                  "Change la source ou la destination d'une ligne, ou les deux");
    set->add_option("--source", edit.source, "Répertoire, disque ou fichier à sauvegarder")
        ->type_name("CHEMIN")
        ->check(notEmpty());
    set->add_option("--destination", edit.destination, "Répertoire où va la copie")
        ->type_name("CHEMIN")
        ->check(notEmpty());
    set->footer(examples({"lignes definir 1 --source ~/Documents --destination /media/cle"}));

    CLI::App* clear = addLineAction(command, arguments, Action::erase, "vider",
                                    "Remet une ligne à zéro, exclusions comprises");
    clear->add_flag("--confirmer", arguments.confirmed, "Remet à zéro sans demander");
    clear->footer(examples({"lignes vider 3 --confirmer"}));

    addSelection(command, arguments, Action::select, "selectionner",
                 "Les lignes prennent part à la prochaine opération");
    addSelection(command, arguments, Action::deselect, "deselectionner",
                 "Les lignes ne prennent plus part aux opérations");
    addExclusions(command, arguments);
    command->require_subcommand(0, 1);
}

void addOptions(CLI::App& app, Arguments& arguments) {
    CLI::App* command = addCommand(app, arguments, Command::options, "options",
                                   "Montre et change les options, communes ou de la configuration");
    command->footer(examples({"options", "options definir SynchroCopie=oui",
                              "options definir Modifie=oui Confirmation=oui --config Travail"}));
    CLI::App* show = addAction(command, arguments, Action::show, "montrer",
                               "Montre les options (ce que fait la commande sans autre mot)");
    addConfiguration(show, arguments);
    addJson(show, arguments);
    CLI::App* set = addAction(command, arguments, Action::set, "definir",
                              "Change des options : toutes celles qui sont nommées, ou aucune");
    set->add_option("OPTION", arguments.edit.assignments,
                    "CLÉ=oui, CLÉ=non, RepertMax=NOMBRE ou AutoTime=hh:mm")
        ->type_name("")
        ->required();
    addConfiguration(set, arguments);
    set->footer(examples({"options definir ContinueOnError=oui", "options definir RepertMax=12"}));
    command->require_subcommand(0, 1);
}

constexpr std::array dayNames = {"lundi",    "mardi",  "mercredi", "jeudi",
                                 "vendredi", "samedi", "dimanche"};

// 1 to 7; 0 for a word that is no day.
int dayNamed(const std::string& word) {
    for (std::size_t i = 0; i < dayNames.size(); ++i) {
        if (equalIgnoringCase(word, dayNames.at(i))) return static_cast<int>(i) + 1;
    }
    return 0;
}

void addPlanTimes(CLI::App* add, Arguments& arguments) {
    add->add_option("--heure", arguments.plan.time, "Heure de la sauvegarde, « hh:mm »")
        ->type_name("HEURE")
        ->required()
        ->check(CLI::Validator(
            [](const std::string& text) {
                return std::string(isTimeOfDay(text) ? "" : "--heure attend « hh:mm ».");
            },
            ""));
    add->add_option_function<std::vector<std::string>>(
           "--jours",
           [&arguments](const std::vector<std::string>& words) {
               std::set<int> days;
               for (const std::string& word : words) days.insert(dayNamed(word));
               arguments.plan.days.assign(days.begin(), days.end());
           },
           "Jours de la semaine, par exemple lundi,jeudi ; sinon tous")
        ->type_name("JOURS")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Validator(
            [](const std::string& text) {
                return std::string(dayNamed(text) > 0 ? "" : "--jours attend lundi, mardi…");
            },
            ""));
}

void addPlans(CLI::App& app, Arguments& arguments) {
    CLI::App* command =
        addCommand(app, arguments, Command::plan, "planifier",
                   "Fait sauvegarder une configuration par le système, à son heure");
    command->footer(examples({"planifier", "planifier ajouter --heure 12:30 --config Travail",
                              "planifier retirer --config Travail"}));
    CLI::App* show = addAction(command, arguments, Action::show, "montrer",
                               "Montre ce qui est planifié (ce que fait la commande seule)");
    addConfiguration(show, arguments);
    addJson(show, arguments);
    CLI::App* add = addAction(
        command, arguments, Action::add, "ajouter",
        "Planifie la sauvegarde : un timer systemd de votre session, ou une ligne de votre\n"
        "crontab ; sous Windows, une tâche du Planificateur. Remplace ce qui l'était");
    addPlanTimes(add, arguments);
    add->add_flag("--fenetre", arguments.plan.withWindows,
                  "Lance coffrelune /Auto, qui montre sa fenêtre, au lieu de la console");
    addConfiguration(add, arguments);
    addJson(add, arguments);
    add->footer(examples({"planifier ajouter --heure 12:30 --config Travail",
                          "planifier ajouter --heure 20:00 --jours lundi,jeudi"}));
    CLI::App* remove = addAction(command, arguments, Action::erase, "retirer",
                                 "Retire ce que cette commande a planifié, et rien d'autre");
    addConfiguration(remove, arguments);
    remove->footer(examples({"planifier retirer --config Travail"}));
    command->require_subcommand(0, 1);
}

}  // namespace

void addSettingsCommands(CLI::App& app, Arguments& arguments) {
    addConfigurations(app, arguments);
    addLines(app, arguments);
    addOptions(app, arguments);
    addPlans(app, arguments);
    CLI::App* drives =
        addWord(app, "lecteurs", "Montre les lecteurs, où ils sont montés et la place qu'ils ont");
    drives->callback([&arguments] { arguments.command = Command::drives; });
    addJson(drives, arguments);
    drives->footer(examples({"lecteurs", "lecteurs --json"}));
}

}  // namespace coffrelune::console
