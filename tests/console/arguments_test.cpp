#include "console/arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace coffrelune::console {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class ArgumentsTest : public testing::Test {
  protected:
    std::optional<Arguments> parse(std::vector<std::string> words) {
        words.insert(words.begin(), "coffrelune-console");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        auto arguments = parseArguments(words, status);
        output = testing::internal::GetCapturedStdout();
        errors = testing::internal::GetCapturedStderr();
        return arguments;
    }
    /// Refused with status 2 and this sentence on the error stream alone.
    void expectRefused(const std::vector<std::string>& words, const std::string& sentence) {
        status = -1;
        EXPECT_FALSE(parse(words).has_value());
        EXPECT_EQ(status, 2);
        EXPECT_THAT(output, IsEmpty());
        EXPECT_EQ(errors, sentence + "\n« coffrelune-console --help » montre l'utilisation.\n");
    }

    int status = -1;
    std::string output;
    std::string errors;
};

TEST_F(ArgumentsTest, BackupAloneLeavesEverythingToTheSettings) {
    const auto arguments = parse({"sauvegarder"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_EQ(arguments->command, Command::backup);
    EXPECT_EQ(arguments->configuration, "");
    EXPECT_FALSE(arguments->direct());
    EXPECT_FALSE(arguments->overwrite);
    EXPECT_FALSE(arguments->keep);
    EXPECT_FALSE(arguments->journal);
    EXPECT_FALSE(arguments->json);
}

TEST(ArgumentParserTest, KeepsNothingOfTheLinesBefore) {
    const std::vector<std::vector<std::string>> lines = {
        {"", "sauvegarder", "--config", "a", "--ecraser", "--rapport", "r"},
        {"", "lignes", "exclusions", "1", "--ajouter", "x", "--vider"},
        {"", "lignes", "exclusions"},
        {"", "planifier", "ajouter", "--heure", "12:30", "--jours", "lundi,jeudi"},
        {"", "resultats", "--alerte", "7"},
        {"", "sauvegarder", "--inconnue"},
        {"", "sauvegarder", "--help"},
        {"", "sauvegarder"},
        {""},
    };
    ArgumentParser kept;
    const auto said = [](ArgumentParser& parser, const std::vector<std::string>& words) {
        int status = -1;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const auto arguments = parser.parse(words, status);
        const std::string output = testing::internal::GetCapturedStdout();
        return std::tuple(arguments, status, output, testing::internal::GetCapturedStderr());
    };
    for (const auto& before : lines) {
        for (const auto& words : lines) {
            (void)said(kept, before);
            ArgumentParser fresh;
            EXPECT_TRUE(said(kept, words) == said(fresh, words)) << testing::PrintToString(words);
        }
    }
}

TEST_F(ArgumentsTest, TakesAConfiguration) {
    const auto arguments = parse({"sauvegarder", "--config", "travail"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_EQ(arguments->configuration, "travail");
}

TEST_F(ArgumentsTest, TakesASourceAndADestination) {
    const auto arguments = parse({"sauvegarder", "--source", "/home/a b", "--destination=/mnt/x"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_TRUE(arguments->direct());
    EXPECT_EQ(arguments->source, "/home/a b");
    EXPECT_EQ(arguments->destination, "/mnt/x");
}

TEST_F(ArgumentsTest, TakesTheSwitches) {
    auto arguments = parse({"sauvegarder", "--ecraser", "--journal", "--json"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_TRUE(arguments->overwrite);
    EXPECT_TRUE(arguments->journal);
    EXPECT_TRUE(arguments->json);
    arguments = parse({"sauvegarder", "--conserver"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_TRUE(arguments->keep);
}

TEST_F(ArgumentsTest, KnowsTheOtherCommands) {
    const std::vector<std::pair<const char*, Command>> commands = {{"restaurer", Command::restore},
                                                                   {"comparer", Command::compare},
                                                                   {"journal", Command::journal},
                                                                   {"resultats", Command::results}};
    for (const auto& [word, command] : commands) {
        const auto arguments = parse({word});
        ASSERT_TRUE(arguments.has_value()) << word;
        EXPECT_EQ(arguments->command, command);
    }
}

TEST_F(ArgumentsTest, TakesTheSwitchesOfRestoreAndComparison) {
    auto arguments = parse({"restaurer", "--confirmer"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_TRUE(arguments->confirmed);
    arguments = parse({"comparer", "--inverse"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_TRUE(arguments->reversed);
    arguments = parse({"journal", "--type", "comparaison"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_EQ(arguments->kind, OperationKind::comparison);
}

TEST_F(ArgumentsTest, RefusesAnUnknownKindOfJournal) {
    expectRefused({"journal", "--type", "copie"},
                  "--type attend sauvegarde, restauration ou comparaison.");
}

TEST_F(ArgumentsTest, RefusesNoCommand) {
    expectRefused({}, "Indiquez une commande.");
}

TEST_F(ArgumentsTest, RefusesAnUnknownWordOrOption) {
    expectRefused({"sauvegarder", "--vite"}, "Option ou argument inconnu : --vite");
    expectRefused({"sauvegarder", "Travail"}, "Option ou argument inconnu : Travail");
}

TEST_F(ArgumentsTest, RefusesASourceWithoutADestination) {
    expectRefused({"sauvegarder", "--source", "/a"}, "--source et --destination vont ensemble.");
    expectRefused({"sauvegarder", "--destination", "/a"},
                  "--source et --destination vont ensemble.");
}

TEST_F(ArgumentsTest, RefusesSwitchesThatContradictEachOther) {
    expectRefused({"sauvegarder", "--ecraser", "--conserver"},
                  "--ecraser et --conserver s'excluent.");
    expectRefused({"sauvegarder", "--config", "A", "--source", "/a", "--destination", "/b"},
                  "--config et --source s'excluent.");
}

TEST_F(ArgumentsTest, RefusesAnOptionWithoutItsValue) {
    expectRefused({"sauvegarder", "--config"},
                  "Une option attend une valeur, ou en a reçu plusieurs.");
}

// A variable that a script forgot to set must not turn into a backup of something else.
TEST_F(ArgumentsTest, RefusesAnEmptyValue) {
    const std::string sentence = "Une option attend une valeur qui ne soit pas vide.";
    expectRefused({"sauvegarder", "--source", "", "--destination", "/b"}, sentence);
    expectRefused({"sauvegarder", "--source", "/a", "--destination", ""}, sentence);
    expectRefused({"sauvegarder", "--source", "", "--destination", ""}, sentence);
    expectRefused({"sauvegarder", "--config", ""}, sentence);
}

TEST_F(ArgumentsTest, TakesAnActionOnTheSettings) {
    auto arguments = parse({"configurations", "renommer", "A", "B"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_EQ(arguments->command, Command::configurations);
    EXPECT_EQ(arguments->edit.action, Action::rename);
    EXPECT_EQ(arguments->edit.name, "A");
    EXPECT_EQ(arguments->edit.newName, "B");
    arguments = parse({"lignes", "definir", "2", "--source", "/a", "--config", "X"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_EQ(arguments->edit.lines, std::vector<int>{2});
    EXPECT_EQ(arguments->edit.source, "/a");
    EXPECT_FALSE(arguments->edit.destination.has_value());
    EXPECT_EQ(arguments->configuration, "X");
    // The source of a line is none of a run without settings.
    EXPECT_FALSE(arguments->direct());
    arguments = parse({"lignes", "exclusions", "--ajouter", "a", "--ajouter", "b", "1"});
    ASSERT_TRUE(arguments.has_value());
    EXPECT_EQ(arguments->edit.added, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(arguments->edit.lines, std::vector<int>{1});
}

TEST_F(ArgumentsTest, ACommandAloneShows) {
    for (const char* word : {"configurations", "lignes", "options"}) {
        const auto arguments = parse({word, "--json"});
        ASSERT_TRUE(arguments.has_value()) << word;
        EXPECT_EQ(arguments->edit.action, Action::show);
        EXPECT_TRUE(arguments->json);
    }
}

TEST_F(ArgumentsTest, SaysWhatACommandLacks) {
    expectRefused({"configurations", "renommer", "A"}, "Il manque à « renommer » : NOUVEAU");
    expectRefused({"lignes", "selectionner", "0"}, "Une ligne se nomme par son numéro : 1, 2, 3…");
    expectRefused({"lignes", "exclusions", "1", "--sous-repertoires", "peu"},
                  "--sous-repertoires attend tous, aucun ou sauf.");
}

TEST_F(ArgumentsTest, HelpIsInFrenchAndEndsWell) {
    EXPECT_FALSE(parse({"--help"}).has_value());
    EXPECT_EQ(status, 0);
    EXPECT_THAT(output, HasSubstr("Utilisation"));
    EXPECT_THAT(output, HasSubstr("sauvegarder"));
    EXPECT_THAT(output, HasSubstr("Affiche cette aide"));
    for (const char* english : {"Usage", "Subcommands", "Print", "Display", "OPTION]"}) {
        EXPECT_THAT(output, testing::Not(HasSubstr(english)));
    }
}

TEST_F(ArgumentsTest, HelpOfTheBackupNamesItsOptionsAndTheExitStatus) {
    EXPECT_FALSE(parse({"sauvegarder", "--help"}).has_value());
    EXPECT_EQ(status, 0);
    for (const char* option :
         {"--config NOM", "--source CHEMIN", "--destination CHEMIN", "--ecraser", "--conserver",
          "--journal", "--json", "État de sortie : 0 sans erreur"}) {
        EXPECT_THAT(output, HasSubstr(option));
    }
}

TEST_F(ArgumentsTest, ShowsTheVersionAsTheProgramTitleDoes) {
    EXPECT_FALSE(parse({"--version"}).has_value());
    EXPECT_EQ(status, 0);
    EXPECT_EQ(output, "Coffrelune Version 3.05\n");
}

}  // namespace
}  // namespace coffrelune::console
