#include "views/terminal/terminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "views/terminal/redirected_streams.h"

namespace coffrelune {
namespace {

using testing::HasSubstr;

TEST(Terminal, WritesResultsAndTextsToTheOutputAndWarningsToTheErrors) {
    RedirectedStreams streams(noTerminal);
    Terminal terminal(false);
    terminal.result("{}");
    terminal.say("Sauvegarde terminée sans erreur.\r\n\r\nDurée : 00:01:23");
    terminal.warn("attention\r\nà ceci");
    streams.finish();
    EXPECT_EQ(streams.onOutput(), "{}\nSauvegarde terminée sans erreur.\n\nDurée : 00:01:23\n");
    EXPECT_EQ(streams.onErrors(), "attention\nà ceci\n");
}

TEST(Terminal, KeepsTheOutputForTheResultWhenAProgramReadsIt) {
    RedirectedStreams streams(noTerminal);
    Terminal terminal(true);
    terminal.say("Rien à sauvegarder !");
    terminal.result("{}");
    streams.finish();
    EXPECT_EQ(streams.onOutput(), "{}\n");
    EXPECT_EQ(streams.onErrors(), "Rien à sauvegarder !\n");
}

TEST(Terminal, ShowsNoProgressWhereThereIsNoTerminal) {
    RedirectedStreams streams(noTerminal);
    Terminal terminal(false);
    EXPECT_FALSE(terminal.showsProgress());
    terminal.showProgress("42% copiés");
    terminal.clearProgress();
    terminal.say("fin");
    streams.finish();
    EXPECT_EQ(streams.onOutput(), "fin\n");
    EXPECT_EQ(streams.onErrors(), "");
}

TEST(Terminal, WritesEachProgressOverTheOneBefore) {
    RedirectedStreams streams(interactive);
    Terminal terminal(false);
    terminal.showProgress("41% copiés");
    terminal.showProgress("42% copiés");
    streams.finish();
    EXPECT_EQ(streams.onTerminal(), "\r41% copiés\x1b[K\r42% copiés\x1b[K");
}

TEST(Terminal, TakesTheProgressAwayBeforeItSaysSomething) {
    RedirectedStreams streams(interactive);
    Terminal terminal(false);
    terminal.showProgress("42%");
    terminal.say("ligne");
    terminal.say("autre");
    streams.finish();
    EXPECT_EQ(streams.onTerminal(), "\r42%\x1b[K\r\x1b[Kligne\nautre\n");
}

TEST(Terminal, CutsTheProgressToTheWidth) {
    RedirectedStreams streams({true, true, true, 30});
    Terminal terminal(false);
    terminal.showProgress("é234567890123456789012345678901234567890");
    streams.finish();
    EXPECT_EQ(streams.onTerminal(), "\ré2345678901234567890123456789\x1b[K");
}

TEST(Terminal, TakesEightyColumnsWhenTheTerminalDoesNotTell) {
    RedirectedStreams streams({true, true, true, 0});
    Terminal terminal(false);
    terminal.showProgress(std::string(200, 'x'));
    streams.finish();
    EXPECT_EQ(streams.onTerminal(), "\r" + std::string(79, 'x') + "\x1b[K");
}

TEST(Terminal, WritesNoEscapeCodeIntoAFileWhileTheErrorsAreATerminal) {
    RedirectedStreams streams({true, false, true});
    Terminal terminal(false);
    terminal.showProgress("42%");
    terminal.say("ligne");
    terminal.showProgress("43%");
    terminal.result("{}");
    streams.finish();
    EXPECT_EQ(streams.onOutput(), "ligne\n{}\n");
    EXPECT_THAT(streams.onTerminal(), HasSubstr("42%"));
}

TEST(Terminal, CanAskOnlyWithATerminalOnBothSides) {
    const auto canAsk = [](bool input, bool output, bool errors) {
        RedirectedStreams streams({input, output, errors});
        return Terminal(false).canAsk();
    };
    EXPECT_TRUE(canAsk(true, true, true));
    EXPECT_TRUE(canAsk(true, false, true));
    EXPECT_TRUE(canAsk(true, true, false));
    EXPECT_FALSE(canAsk(true, false, false));
    EXPECT_FALSE(canAsk(false, true, true));
    EXPECT_FALSE(canAsk(false, false, false));
}

TEST(Terminal, AsksAndReadsOneLine) {
    RedirectedStreams streams(interactive);
    Terminal terminal(false);
    std::string first;
    std::string second;
    streams.type("oui\nnon\n");
    const bool firstRead = terminal.ask("Un ? ", first);
    const bool secondRead = terminal.ask("Deux ? ", second);
    streams.finish();
    EXPECT_TRUE(firstRead && secondRead);
    EXPECT_EQ(first, "oui");
    EXPECT_EQ(second, "non");
    EXPECT_EQ(streams.onTerminal(), "Un ? Deux ? ");
}

TEST(Terminal, NothingIsReadAfterTheEndOfTheInput) {
    RedirectedStreams streams(interactive);
    Terminal terminal(false);
    streams.type("\x04");
    std::string line = "before";
    const bool read = terminal.ask("? ", line);
    streams.finish();
    EXPECT_FALSE(read);
    EXPECT_EQ(line, "");
}

TEST(Terminal, AsksOnTheTerminalWhenTheOutputIsAFile) {
    RedirectedStreams streams({true, false, true});
    Terminal terminal(false);
    streams.type("o\n");
    std::string line;
    const bool read = terminal.ask("? ", line);
    streams.finish();
    EXPECT_TRUE(read);
    EXPECT_EQ(streams.onTerminal(), "? ");
    EXPECT_EQ(streams.onOutput(), "");
}

}  // namespace
}  // namespace coffrelune
