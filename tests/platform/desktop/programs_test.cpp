#include "platform/posix/desktop/programs.h"

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cerrno>

#include "platform/desktop/fake_programs.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitWords, SplitsAtBlanksOutsideQuotes) {
    EXPECT_THAT(splitWords(""), IsEmpty());
    EXPECT_THAT(splitWords("  \t "), IsEmpty());
    EXPECT_THAT(splitWords(" -a  b\tc "), ElementsAre("-a", "b", "c"));
    EXPECT_THAT(splitWords(R"("un mot" 'et un autre')"), ElementsAre("un mot", "et un autre"));
    EXPECT_THAT(splitWords(R"(--nom="Jean Paul"'!' x)"), ElementsAre("--nom=Jean Paul!", "x"));
    EXPECT_THAT(splitWords(R"("" '')"), ElementsAre("", ""));
}

TEST(SplitWords, BackslashTakesTheNextCharacterAsItIs) {
    EXPECT_THAT(splitWords(R"(a\ b \"c \\)"), ElementsAre("a b", "\"c", "\\"));
    EXPECT_THAT(splitWords(R"("a\"b\\c\d")"), ElementsAre(R"(a"b\c\d)"));
    EXPECT_THAT(splitWords(R"('a\b')"), ElementsAre(R"(a\b)"));
    EXPECT_THAT(splitWords("fin\\"), ElementsAre("fin\\"));
}

TEST(SplitWords, ExpandsNothingAndForgivesAnOpenQuote) {
    EXPECT_THAT(splitWords("$HOME *.txt ~ `ls` a;b"),
                ElementsAre("$HOME", "*.txt", "~", "`ls`", "a;b"));
    EXPECT_THAT(splitWords("\"a b"), ElementsAre("a b"));
}

TEST(FindProgram, TakesTheFirstThatMayBeRun) {
    const TemporaryDirectory disk;
    disk.makeDirectory("a/outil");  // a directory is no program
    disk.makeDirectory("b");
    disk.makeDirectory("c");
    chmod(disk.write("b/outil", "#!/bin/sh\n").c_str(), 0644);
    chmod(disk.write("c/outil", "#!/bin/sh\n").c_str(), 0755);
    const std::string path = disk.at("a") + ":" + disk.at("b") + ":" + disk.at("c");
    EXPECT_EQ(findProgram("outil", path), disk.at("c/outil"));
    EXPECT_EQ(findProgram("autre", path), "");
    EXPECT_EQ(findProgram("outil", ""), "");
    EXPECT_EQ(findProgram("", path), "");
    EXPECT_EQ(findProgram("../c/outil", path), "");
}

TEST(FindProgram, PassesOverTheCurrentDirectory) {
    const TemporaryDirectory disk;
    chmod(disk.write("outil", "#!/bin/sh\n").c_str(), 0755);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(disk.at());
    EXPECT_EQ(findProgram("outil", ".::"), "");
    std::filesystem::current_path(before);
}

TEST(ProgramFile, IsWhatTheKernelRuns) {
    const TemporaryDirectory disk;
    chmod(disk.write("script", "#!/bin/sh\n").c_str(), 0755);
    chmod(disk.write("binaire",
                     "\x7F"
                     "ELF\x02")
              .c_str(),
          0755);
    chmod(disk.write("lettre.txt", "Bonjour").c_str(), 0755);
    chmod(disk.write("vide", "").c_str(), 0755);
    chmod(disk.write("donnees", "#!/bin/sh\n").c_str(), 0644);
    EXPECT_TRUE(isProgramFile(disk.at("script")));
    EXPECT_TRUE(isProgramFile(disk.at("binaire")));
    EXPECT_FALSE(isProgramFile(disk.at("lettre.txt")));
    EXPECT_FALSE(isProgramFile(disk.at("vide")));
    EXPECT_FALSE(isProgramFile(disk.at("donnees")));
    EXPECT_FALSE(isProgramFile(disk.at()));
    EXPECT_FALSE(isProgramFile(disk.at("rien")));
}

/// Session and parent of a /proc/PID/stat line, whose second field may hold anything in brackets.
std::pair<pid_t, pid_t> sessionAndParent(const std::string& stat) {
    std::istringstream fields(stat.substr(stat.rfind(')') + 1));
    std::string state;
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    fields >> state >> parent >> group >> session;
    return {session, parent};
}

TEST(StartProgram, RunsInASessionOfItsOwnWithNothingToRead) {
    const FakePrograms programs;
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    const int oldInput = dup(STDIN_FILENO);
    dup2(pipeEnds[0], STDIN_FILENO);
    ASSERT_EQ(write(pipeEnds[1], "secret", 6), 6);
    startProgram({programs.install("outil"), "un mot", "", "deux"});
    EXPECT_THAT(programs.argumentsOf("outil"), ElementsAre("un mot", "", "deux"));
    EXPECT_EQ(programs.inputOf("outil"), "");
    const auto [session, parent] = sessionAndParent(programs.statOf("outil"));
    EXPECT_GT(session, 0);
    EXPECT_NE(session, getsid(0));
    EXPECT_NE(parent, getpid());
    dup2(oldInput, STDIN_FILENO);
    for (const int fd : {oldInput, pipeEnds[0], pipeEnds[1]}) close(fd);
}

TEST(StartProgram, LeavesNoChildBehind) {
    const FakePrograms programs;
    startProgram({programs.install("outil")});
    startProgram({programs.disk().at("absent")});
    startProgram({});
    programs.argumentsOf("outil");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(StartProgram, DoesNotWaitForItsEnd) {
    const FakePrograms programs;
    const std::string tube = programs.disk().at("tube");
    ASSERT_EQ(mkfifo(tube.c_str(), 0600), 0);
    programs.disk().write("bin/lent", "#!/bin/sh\nread -r x < '" + tube + "'\n");
    chmod(programs.disk().at("bin/lent").c_str(), 0755);
    startProgram({programs.disk().at("bin/lent")});
    // It still reads: only now does its line come, so opening for writing finds it there.
    std::ofstream(tube) << "fin\n";
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

}  // namespace
}  // namespace coffrelune
