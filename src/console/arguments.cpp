#include "console/arguments.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include "console/argument_parts.h"
#include "system/text.h"
#include "views/terminal/streams.h"

namespace coffrelune::console {
namespace {

constexpr int wrongUse = 2;

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
    formatter->label("Positionals", "Arguments ");
    formatter->label("REQUIRED", "");
    formatter->column_width(26);
    app.formatter(formatter);
    app.set_help_flag("-h,--help", "Affiche cette aide");
    // The same words on every system: "/source" is no option on any.
    app.allow_windows_style_options(false);
}

CLI::Validator knownKind() {
    return CLI::Validator(
        [](const std::string& name) {
            return std::string(
                kindNamed(name) ? "" : "--type attend sauvegarde, restauration ou comparaison.");
        },
        "");
}

CLI::Validator dayCount() {
    return CLI::Validator(
        [](const std::string& text) {
            const bool digits =
                std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
            const bool number = digits && !text.empty() && text.size() < 5;
            return std::string(number ? "" : "--alerte attend un nombre de jours.");
        },
        "");
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
    command
        ->add_option("--rapport", arguments.report,
                     "Écrit dans ce fichier ce que devient chaque fichier, une ligne chacun : un\n"
                     "objet JSON s'il finit par .jsonl ou .json, un texte sinon ; il est remplacé")
        ->type_name("FICHIER")
        ->check(notEmpty());
    command->add_flag("--journal", arguments.journal, "Affiche le journal de l'opération");
    command->add_flag("--dates-arrondies", arguments.roundedDates,
                      "Accepte les dates que le volume de la copie arrondit : un fichier de même\n"
                      "taille dont la date est celle de l'original, arrondie, est à jour");
    command->add_flag("--progression", arguments.progress,
                      "Dit où en est l'opération sur la sortie d'erreur, un objet JSON par ligne");
}

void addWrittenHashes(CLI::App* command, Arguments& arguments) {
    command
        ->add_option("--ecrire-empreintes", arguments.writtenHashes,
                     "Lit ensuite les copies et met cette liste d'empreintes à jour ; un fichier\n"
                     "de même date et de même taille que dans la liste n'est pas relu")
        ->type_name("LISTE")
        ->check(notEmpty());
}

void addReplaceOptions(CLI::App* command, Arguments& arguments) {
    command->add_flag("--ecraser", arguments.overwrite,
                      "Remplace les fichiers existants sans demander");
    command->add_flag("--conserver", arguments.keep, "Garde les fichiers existants sans demander");
}

void addBackup(CLI::App& app, Arguments& arguments) {
    CLI::App* backup = addCommand(app, arguments, Command::backup, "sauvegarder",
                                  "Sauvegarde les lignes sélectionnées");
    addRunOptions(backup, arguments);
    addReplaceOptions(backup, arguments);
    backup->add_flag("--confirmer", arguments.confirmed,
                     "Copie l'arborescence seule (ArbreMode) sans demander");
    addWrittenHashes(backup, arguments);
    backup->add_flag("--notifier", arguments.notifies,
                     "Dit la fin dans une notification du bureau, s'il y en a un (sauf\n"
                     "Notification=0 dans les réglages)");
    backup->add_flag("--confirmer-source", arguments.originalConfirmed,
                     "La source est la bonne, même si son volume, un montage ou une restauration\n"
                     "inachevée faisait garder les fichiers excédentaires");

    backup->footer(
        examples({"sauvegarder", "sauvegarder --config Travail --ecraser",
                  "sauvegarder --source ~/Documents --destination /media/cle --ecraser"}));
}

void addCommands(CLI::App& app, Arguments& arguments) {
    addBackup(app, arguments);
    CLI::App* restore = addCommand(app, arguments, Command::restore, "restaurer",
                                   "Remet les copies à leur place d'origine");
    addRunOptions(restore, arguments);
    addReplaceOptions(restore, arguments);
    restore->add_flag("--confirmer", arguments.confirmed,
                      "Restaure sans les deux questions de confirmation");

    restore->footer(examples(
        {"restaurer --config Travail", "restaurer --config Travail --confirmer --ecraser"}));

    CLI::App* compare = addCommand(app, arguments, Command::compare, "comparer",
                                   "Liste ce qui serait copié, sans rien copier");
    addRunOptions(compare, arguments);
    compare->add_flag("--inverse", arguments.reversed,
                      "Compare la destination à la source, comme pour une restauration");

    compare->footer(examples({"comparer --config Travail", "comparer --inverse --json"}));

    CLI::App* verify =
        addCommand(app, arguments, Command::verify, "verifier",
                   "Lit originaux et copies et compare ce qu'ils contiennent, sans rien écrire");
    addRunOptions(verify, arguments);
    verify->add_flag("--inverse", arguments.reversed,
                     "Cherche dans la source chaque fichier de la copie");
    verify
        ->add_option("--empreintes", arguments.hashes,
                     "Lit la copie seule et la compare à cette liste d'empreintes ; l'original\n"
                     "n'est pas nécessaire")
        ->type_name("LISTE")
        ->check(notEmpty());
    addWrittenHashes(verify, arguments);
    verify->footer(examples({"verifier --config Travail",
                             "verifier --source ~/Documents --destination /media/cle --json",
                             "sauvegarder --config Travail --ecrire-empreintes travail.empreintes",
                             "verifier --config Travail --empreintes travail.empreintes"}));

    CLI::App* journal = addCommand(app, arguments, Command::journal, "journal",
                                   "Montre la dernière liste d'erreurs");
    journal
        ->add_option_function<std::string>(
            "--type", [&](const std::string& name) { arguments.kind = *kindNamed(name); },
            "sauvegarde, restauration ou comparaison")
        ->type_name("TYPE")
        ->check(knownKind());
    journal->footer(examples({"journal", "journal --type restauration --config Travail"}));
    CLI::App* results = addCommand(app, arguments, Command::results, "resultats",
                                   "Résume les dernières opérations de chaque sorte");
    results
        ->add_option("--alerte", arguments.alertDays,
                     "État 1 quand la dernière sauvegarde complète et sans erreur a plus de JOURS\n"
                     "jours, ou qu'il n'y en a pas eu")
        ->type_name("JOURS")
        ->check(dayCount());
    results->footer(examples({"resultats --config Travail", "resultats --alerte 7 --json"}));
    addSettingsCommands(app, arguments);
}

std::string unknownWords(const CLI::App& app) {
    std::string words;
    for (const std::string& word : app.remaining(true)) words += (words.empty() ? "" : " ") + word;
    return words;
}

// What the last of the given words still needs.
std::string lacking(const CLI::App& app) {
    const CLI::App* last = &app;
    while (!last->get_subcommands().empty()) last = last->get_subcommands().back();
    std::string words;
    for (const CLI::Option* option : last->get_options()) {
        if (option->get_required() && option->count() == 0) words += " " + option->get_name();
    }
    return "Il manque à « " + last->get_name() + " » :" + words;
}

// A validator's own, after the name of the option.
std::string sentenceOf(const CLI::ParseError& error) {
    const std::string text = error.what();
    const std::size_t colon = text.find(": ");
    return colon == std::string::npos ? text : text.substr(colon + 2);
}

// The parser's own messages are in English.
std::string frenchMessage(const CLI::App& app, const CLI::ParseError& error,
                          const std::string& firstWord) {
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
        case CLI::ExitCodes::ExtrasError:
            return "Option ou argument inconnu : " + unknownWords(app);
        case CLI::ExitCodes::RequiredError:
            if (firstWord.rfind('-', 0) == 0) return "Option inconnue : " + firstWord;
            if (!app.get_subcommands().empty()) return lacking(app);
            if (!firstWord.empty()) return "Commande inconnue : " + firstWord;
            return "Indiquez une commande.";
        case CLI::ExitCodes::ArgumentMismatch:
            return "Une option attend une valeur, ou en a reçu plusieurs.";
        case CLI::ExitCodes::ValidationError:
            return sentenceOf(error);
        case CLI::ExitCodes::ConversionError:
            return "Un nombre est attendu.";
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
    if (!arguments.hashes.empty() && !arguments.writtenHashes.empty()) {
        return "--empreintes et --ecrire-empreintes s'excluent.";
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

struct ArgumentParser::Language {
    Arguments arguments;  // where the options write
    CLI::App app{"Coffrelune dans un terminal : sauvegarde, restauration et comparaison",
                 "coffrelune-console"};
};

ArgumentParser::ArgumentParser() : language_(std::make_unique<Language>()) {
    CLI::App& app = language_->app;
    speakFrench(app);
    app.set_version_flag("--version", versionText(), "Affiche la version");
    app.require_subcommand(1);
    app.footer(exitStatuses);
    addCommands(app, language_->arguments);
}

ArgumentParser::~ArgumentParser() = default;

std::optional<Arguments> ArgumentParser::parse(const std::vector<std::string>& words,
                                               int& exitStatus) {
    CLI::App& app = language_->app;
    const Arguments& arguments = language_->arguments;
    language_->arguments = {};
    app.clear();
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

std::optional<Arguments> parseArguments(const std::vector<std::string>& words, int& exitStatus) {
    return ArgumentParser().parse(words, exitStatus);
}

}  // namespace coffrelune::console
