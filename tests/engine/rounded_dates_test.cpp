// Volumes that do not hold the times of files exactly.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t odd = MemoryDisk::defaultTime + 1'234'567;

class RoundedDates : public Engine {
  protected:
    RoundedDates() {
        disk().volume("F:\\").times.step = 2 * oneSecond;
        disk().volume("F:\\").identity = "key";
        disk().file(R"(C:\Docs\a.txt)", "aaaaa", odd);
        disk().directory("F:\\Save");
    }

    void accept() { system.options.DatesArrondies = -1; }
    void backUp() {
        startAgain();
        EXPECT_TRUE(run("C:\\Docs", "F:\\Save"));
    }
    void restoreAgain() {
        startAgain();
        EXPECT_TRUE(restore("C:\\Docs", "F:\\Save"));
    }
    std::vector<std::string> compare(Layout layout = Layout::normal) {
        startAgain();
        window.comparison.clear();
        system.operationKind = OperationKind::comparison;
        pass(lineRoots("C:\\Docs", "F:\\Save", layout), Pass::analysis);
        system.operationKind = OperationKind::backup;
        return window.comparison;
    }
    std::uint64_t copied() { return state.tally(0).files; }
};

TEST_F(RoundedDates, CountAsLaterUnlessTheyAreAccepted) {
    backUp();
    EXPECT_EQ(disk().lastWrite(R"(F:\Save\Docs\a.txt)"), MemoryDisk::defaultTime + 2 * oneSecond);
    backUp();
    EXPECT_EQ(copied(), 1U);
    accept();
    backUp();
    EXPECT_EQ(copied(), 0U);
}

TEST_F(RoundedDates, OfAnotherSizeAreCopied) {
    accept();
    backUp();
    disk().file(R"(C:\Docs\a.txt)", "longer", odd);
    backUp();
    EXPECT_EQ(copied(), 1U);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "longer");
}

TEST_F(RoundedDates, OfALaterStepAreCopied) {
    accept();
    backUp();
    disk().file(R"(C:\Docs\a.txt)", "other", odd + 2 * oneSecond);
    backUp();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "other");
}

TEST_F(RoundedDates, HoldNothingExcessive) {
    accept();
    system.options.SynchroCopie = -1;
    disk().file(R"(C:\Docs\b.txt)", "bbb", odd);
    backUp();
    backUp();
    EXPECT_EQ(statistics.filesDeleted, 0) << "the copies are none that the copy pass replaces";
    disk().remove(R"(C:\Docs\b.txt)");
    backUp();
    EXPECT_EQ(statistics.filesRemoved, 1);
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\b.txt)"));
}

TEST_F(RoundedDates, AreNoDifferenceInAComparisonEitherWay) {
    accept();
    backUp();
    EXPECT_THAT(compare(), IsEmpty());
    EXPECT_THAT(compare(Layout::reversed), IsEmpty());
    system.options.DatesArrondies = 0;
    EXPECT_THAT(compare(), ElementsAre(R"(F:\Save\Docs\a.txt est plus récent)"));
}

// The original keeps its own, finer time.
TEST_F(RoundedDates, AreNoReasonToRestore) {
    accept();
    backUp();
    restoreAgain();
    EXPECT_EQ(copied(), 0U);
    EXPECT_EQ(disk().lastWrite(R"(C:\Docs\a.txt)"), odd);
    disk().remove(R"(C:\Docs\a.txt)");
    restoreAgain();
    EXPECT_EQ(copied(), 1U);
    restoreAgain();
    EXPECT_EQ(copied(), 0U);
}

TEST_F(RoundedDates, AreThoseOfTheVolumeWhereTheBackupWasMade) {
    accept();
    backUp();
    EXPECT_EQ(certificate(R"(F:\Save\Docs)").times, TimeGrid{2 * oneSecond});
    disk().volume("F:\\").identity = "another disk";
    disk().volume("F:\\").times = {};
    EXPECT_THAT(compare(), IsEmpty());
    EXPECT_THAT(compare(Layout::reversed), IsEmpty());
}

TEST_F(RoundedDates, BeyondTheEndsOfTheVolumeAreAcceptedToo) {
    accept();
    disk().volume("F:\\").times.earliest = MemoryDisk::defaultTime;
    disk().file(R"(C:\Docs\old.txt)", "old", MemoryDisk::defaultTime - 1000 * oneSecond);
    backUp();
    backUp();
    EXPECT_EQ(copied(), 0U);
}

// A comparison and a verification write nothing, not even a file to try times on.
TEST_F(RoundedDates, AreNotTriedOutByWhoOnlyReads) {
    accept();
    backUp();
    (void)compare();
    EXPECT_THAT(faulty.calls(), testing::Not(testing::Contains(HasSubstr("measureTimes"))));
    restoreAgain();
    EXPECT_THAT(faulty.calls(), testing::Not(testing::Contains(HasSubstr("measureTimes"))));
}

TEST_F(RoundedDates, AreThoseThatWereNotedWhereTheVolumeCannotBeTried) {
    accept();
    backUp();
    startAgain();
    faulty.fail("measureTimes", "", error_number::diskFull);
    EXPECT_TRUE(run("C:\\Docs", "F:\\Save"));
    EXPECT_EQ(copied(), 0U);
}

TEST_F(RoundedDates, AreToldOnceWithTheWayOut) {
    disk().file(R"(C:\Photos\b.jpg)", "bbb", odd);
    backUp();
    const std::string told =
        R"(Le volume de F:\Save\Docs arrondit les dates : tous les fichiers y sont recopiés à )"
        "chaque sauvegarde. Pour n'y copier que les fichiers modifiés, acceptez les dates "
        "arrondies (bouton « Accepter les dates arrondies », ou --dates-arrondies).";
    EXPECT_THAT(statistics.dateReasons, ElementsAre(told));
    EXPECT_THAT(window.journal, testing::Contains(told));
    EXPECT_TRUE(statistics.roundsDates);
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_TRUE(run("C:\\Photos", "F:\\Save", 1));
    EXPECT_THAT(statistics.dateReasons, SizeIs(1)) << "one volume";
}

TEST_F(RoundedDates, AreNotToldWhereTheyChangeNothing) {
    accept();
    backUp();
    EXPECT_THAT(statistics.dateReasons, IsEmpty());
    system.options.DatesArrondies = 0;
    backUp();
    restoreAgain();
    EXPECT_THAT(statistics.dateReasons, IsEmpty()) << "a restore";
    system.options.RecentSeul = -1;
    disk().file(R"(C:\Docs\new.txt)", "new", odd);
    backUp();
    EXPECT_THAT(statistics.dateReasons, IsEmpty()) << "later copies are kept";
    system.options.RecentSeul = 0;
    system.Modifie = 0;
    backUp();
    EXPECT_THAT(statistics.dateReasons, IsEmpty()) << "everything is copied anyway";
}

TEST_F(RoundedDates, AreNotToldOfFilesThatTheVolumeHoldsExactly) {
    disk().file(R"(C:\Docs\a.txt)", "aaaaa");
    backUp();
    EXPECT_THAT(statistics.dateReasons, IsEmpty());
    backUp();
    EXPECT_EQ(copied(), 0U);
}

TEST_F(RoundedDates, ThatAreNotKeptAtAllAreToldWithoutTheOffer) {
    accept();
    disk().volume("F:\\").keepsTimes = false;
    backUp();
    EXPECT_THAT(statistics.dateReasons,
                ElementsAre(HasSubstr(R"(Le volume de F:\Save\Docs ne garde pas les dates :)")));
    EXPECT_FALSE(statistics.roundsDates);
    backUp();
    EXPECT_EQ(copied(), 1U) << "nobody can tell";
}

}  // namespace
}  // namespace coffrelune
