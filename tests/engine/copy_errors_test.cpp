#include "engine/copy_errors.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class CopyErrorsTest : public testing::Test, protected EngineBench {
  protected:
    CopyErrors errors{system, statistics, window};
};

TEST_F(CopyErrorsTest, NamesTheNumberAndTheFile) {
    errors.count(error_number::sharingViolation, "D:\\Mes documents\\a.doc", "D:\\Mes documents\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 32 - Fichier: D:\\Mes documents\\a.doc"));
    EXPECT_EQ(statistics.errorCount, 1);
    ASSERT_EQ(statistics.errors.size(), 1U);
    EXPECT_EQ(statistics.errors[0].number, 32U);
    EXPECT_EQ(statistics.errors[0].path, "D:\\Mes documents\\a.doc");
}

TEST_F(CopyErrorsTest, ShowsTheFirstErrorBeforeItsLine) {
    system.options.ContinueOnError = -1;
    errors.count(5, "C:\\a", "C:\\");
    errors.count(5, "C:\\b", "C:\\");
    EXPECT_THAT(window.order, ElementsAre("first error", "Erreur: 5 - Fichier: C:\\a",
                                          "Erreur: 5 - Fichier: C:\\b"));
    EXPECT_EQ(window.events, 2);
}

TEST_F(CopyErrorsTest, StopsTheRunWithItsNumber) {
    errors.count(error_number::diskFull, "C:\\Docs\\a", "C:\\Docs\\");
    EXPECT_TRUE(statistics.interruptionRequested);
    EXPECT_EQ(statistics.lastErrorNumber, error_number::diskFull);
    EXPECT_EQ(statistics.sharingPath, "");
}

TEST_F(CopyErrorsTest, KeepsTheDirectoryOfAFileInUse) {
    for (const auto number : {error_number::sharingViolation, error_number::lockViolation}) {
        statistics.sharingPath.clear();
        errors.count(number, "C:\\Docs\\a", "C:\\Docs\\");
        EXPECT_EQ(statistics.sharingPath, "C:\\Docs\\") << number;
        EXPECT_EQ(statistics.lastErrorNumber, number);
    }
}

TEST_F(CopyErrorsTest, GoesOnWhenTheUserChoseSo) {
    system.options.ContinueOnError = -1;
    errors.count(error_number::sharingViolation, "C:\\Docs\\a", "C:\\Docs\\");
    EXPECT_FALSE(statistics.interruptionRequested);
    EXPECT_EQ(statistics.lastErrorNumber, 0U);
    EXPECT_EQ(statistics.sharingPath, "");
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(CopyErrorsTest, NamesADirectoryOncePerRun) {
    EXPECT_TRUE(errors.nameOnce(5, "C:\\Docs"));
    EXPECT_FALSE(errors.nameOnce(5, "C:\\Docs\\"));
    errors.countOnce(5, "C:\\Docs\\");
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_FALSE(statistics.interruptionRequested);
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs"));
}

TEST_F(CopyErrorsTest, NamesADriveRootInFull) {
    errors.countOnce(21, "E:");
    errors.countOnce(21, "E:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 21 - Fichier: E:\\"));
}

TEST_F(CopyErrorsTest, StopsTheRunAtTheFirstCountOfADirectory) {
    errors.countOnce(error_number::sharingViolation, "C:\\Docs");
    EXPECT_TRUE(statistics.interruptionRequested);
    EXPECT_EQ(statistics.lastErrorNumber, 32U);
    EXPECT_EQ(statistics.sharingPath, "C:\\Docs");
}

TEST_F(CopyErrorsTest, NamesWhatALineCannotWriteOncePerLine) {
    system.options.ContinueOnError = -1;
    statistics.currentLine = 1;
    errors.countOnceInLine(19, "C:\\Docs");
    errors.countOnceInLine(19, "C:\\Docs\\");
    EXPECT_TRUE(errors.namedInLine("C:\\Docs\\"));
    statistics.currentLine = 2;
    EXPECT_FALSE(errors.namedInLine("C:\\Docs\\"));
    errors.countOnceInLine(112, "C:\\Docs");
    EXPECT_THAT(window.journal,
                ElementsAre("Erreur: 19 - Fichier: C:\\Docs", "Erreur: 112 - Fichier: C:\\Docs"));
    ASSERT_EQ(statistics.errors.size(), 2U);
    EXPECT_EQ(statistics.errors[0].line, 1);
    EXPECT_EQ(statistics.errors[1].line, 2);
}

// ---- through a run
// -------------------------------------------------------------------------------

class FailingFiles : public Engine {
  protected:
    FailingFiles() {
        for (const char* name : {"a", "b", "c"}) {
            disk().file(std::string("C:\\Docs\\") + name, "12345");
            disk().setInUse(std::string("C:\\Docs\\") + name);
        }
    }
};

TEST_F(FailingFiles, AreThreeErrorsOfARunThatGoesOn) {
    system.options.ContinueOnError = -1;
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.errorCount, 3);
    EXPECT_EQ(window.journal.size(), 3U);
    EXPECT_EQ(window.firstErrors, 1);
    EXPECT_FALSE(statistics.interruptionRequested);
    EXPECT_EQ(statistics.bytesDone, 15) << "a failed file counts as handled";
    EXPECT_EQ(statistics.tallies[0].files, 0U);
}

TEST_F(FailingFiles, StopTheRunAtTheFirst) {
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 32 - Fichier: C:\\Docs\\a"));
    EXPECT_TRUE(statistics.interruptionRequested);
    EXPECT_EQ(statistics.lastErrorNumber, 32U);
    EXPECT_EQ(statistics.sharingPath, "C:\\Docs\\");
}

TEST_F(FailingFiles, AreNamedWithTheirDirectoryWhenALineIsOneFile) {
    run("C:\\Docs\\b", "F:\\");
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 32 - Fichier: C:\\Docs\\b"));
    EXPECT_EQ(statistics.sharingPath, "C:\\Docs\\");
    EXPECT_EQ(statistics.bytesDone, 5);
}

}  // namespace
}  // namespace coffrelune
