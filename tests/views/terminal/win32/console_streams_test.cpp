#include <gtest/gtest.h>

#include "views/terminal/streams.h"
#include "views/terminal/terminal.h"
#include "views/terminal/win32/own_console.h"

namespace coffrelune {
namespace {

TEST(ConsoleStreams, ShowAccentsAndSignsOfAnyAlphabet) {
    std::string first;
    std::string second;
    {
        OwnConsole console;
        Terminal terminal(false);
        terminal.say("Sauvegarde terminée : été, cœur, Ωmega");
        terminal.warn("« déjà »");
        first = console.row(0);
        second = console.row(1);
    }
    EXPECT_EQ(first, "Sauvegarde terminée : été, cœur, Ωmega");
    EXPECT_EQ(second, "« déjà »");
}

TEST(ConsoleStreams, ShowALongTextWhole) {
    std::string last;
    {
        OwnConsole console;
        Terminal terminal(false);
        // More than is written at once, and rewritten on the same row.
        terminal.say(std::string(20000, '\r') + std::string(9000, 'x') + "\r\nfin");
        terminal.showProgress("é");
        last = console.row(9000 / 80 + 2);
    }
    EXPECT_NE(last.find("é"), std::string::npos) << last;
}

TEST(ConsoleStreams, WriteAProgressOverALongerOne) {
    std::string shown;
    std::string said;
    {
        OwnConsole console;
        Terminal terminal(false);
        terminal.showProgress("41% copiés, encore longtemps");
        terminal.showProgress("100% copiés");
        shown = console.row(0);
        terminal.say("fin");
        said = console.row(0);
    }
    EXPECT_EQ(shown, "100% copiés");
    EXPECT_EQ(said, "fin");
}

TEST(ConsoleStreams, ReadALineWithAccents) {
    std::string line;
    bool read = false;
    bool canAsk = false;
    {
        OwnConsole console;
        Terminal terminal(false);
        canAsk = terminal.canAsk();
        console.press(L"Été 12\r");
        read = terminal.ask("? ", line);
    }
    EXPECT_TRUE(canAsk);
    EXPECT_TRUE(read);
    EXPECT_EQ(line, "Été 12");
}

TEST(ConsoleStreams, CtrlZEndsTheInput) {
    std::string line;
    bool read = true;
    {
        OwnConsole console;
        Terminal terminal(false);
        console.press(L"\x1A\r");
        read = terminal.ask("? ", line);
    }
    EXPECT_FALSE(read);
}

TEST(ConsoleStreams, TakeNoQuestionForALineOnceGivenUp) {
    std::string line = "before";
    bool read = true;
    {
        OwnConsole console;
        Terminal terminal(false);
        console.press(L"oui\r");
        read = terminal.ask("? ", line, [] { return true; });
    }
    EXPECT_FALSE(read);
    EXPECT_EQ(line, "");
}

}  // namespace
}  // namespace coffrelune
