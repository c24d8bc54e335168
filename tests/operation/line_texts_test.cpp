#include "operation/line_texts.h"

#include "operation/launch_fixture.h"
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LineLabels : public OperationTest {
  protected:
    LineTexts texts() { return lineTexts(system, 0); }
};

TEST_F(LineLabels, ShowTheCopyFirstInARestore) {
    system.operationKind = OperationKind::restore;
    EXPECT_EQ(texts().source, R"(F:\Save\Docs)");
    EXPECT_EQ(texts().destination, R"(C:\Docs)");
}

TEST_F(LineLabels, ShowTheCopyFirstInAReversedComparisonOnly) {
    system.operationKind = OperationKind::comparison;
    EXPECT_EQ(texts().source, R"(C:\Docs)");
    system.comparisonReversed = true;
    EXPECT_EQ(texts().source, R"(F:\Save\Docs)");
    system.operationKind = OperationKind::backup;
    EXPECT_EQ(texts().source, R"(C:\Docs)");
}

TEST_F(LineLabels, ReversedJoinWithExactlyOneBackslash) {
    system.operationKind = OperationKind::restore;
    system.lines[0].destination = R"(F:\)";
    EXPECT_EQ(texts().source, R"(F:\Docs)");
}

TEST_F(LineLabels, ReversedShowTheDestinationAloneForADriveRoot) {
    system.operationKind = OperationKind::restore;
    system.lines[0].source = R"(E:\)";
    EXPECT_EQ(texts().source, R"(F:\Save)");
    EXPECT_EQ(texts().destination, R"(E:\)");
}

TEST_F(LineLabels, ReversedShowNothingWithoutADestination) {
    system.operationKind = OperationKind::restore;
    system.lines[0].destination.clear();
    EXPECT_EQ(texts().source, "");
    EXPECT_EQ(texts().destination, R"(C:\Docs)");
}

class LineEdit : public OperationTest {
  protected:
    void reversed() { system.operationKind = OperationKind::restore; }
    LineTexts texts() { return lineTexts(system, 0); }
};

TEST_F(LineEdit, InTheNormalLayoutEachLabelIsOnePath) {
    editLine(system, 0, LineSide::left, R"(C:\Other)");
    editLine(system, 0, LineSide::right, R"(G:\Copies)");
    EXPECT_EQ(system.lines[0].source, R"(C:\Other)");
    EXPECT_EQ(system.lines[0].destination, R"(G:\Copies)");
    EXPECT_EQ(setting("Travail", "Source0"), R"(C:\Other)");
    EXPECT_EQ(setting("Travail", "Destination0"), R"(G:\Copies)");
}

TEST_F(LineEdit, OfTheLeftLabelInARestoreLosesTheAppendedComponent) {
    reversed();
    ASSERT_EQ(texts().source, R"(F:\Save\Docs)");
    editLine(system, 0, LineSide::left, R"(G:\Copies\Docs)");
    EXPECT_EQ(texts().source, R"(G:\Copies\Docs)");
    system.operationKind = OperationKind::backup;
    EXPECT_EQ(texts().destination, R"(G:\Copies)");
    EXPECT_EQ(setting("Travail", "Destination0"), R"(G:\Copies)");
    EXPECT_EQ(setting("Travail", "Source0"), R"(C:\Docs)");
}

TEST_F(LineEdit, OfTheLeftLabelWithoutTheComponentIsTheDestination) {
    reversed();
    editLine(system, 0, LineSide::left, R"(G:\Copies)");
    EXPECT_EQ(system.lines[0].destination, R"(G:\Copies)");
    EXPECT_EQ(texts().source, R"(G:\Copies\Docs)");
}

TEST_F(LineEdit, OfTheLeftLabelDownToADriveKeepsItsRoot) {
    reversed();
    editLine(system, 0, LineSide::left, R"(G:\Docs)");
    EXPECT_EQ(system.lines[0].destination, "G:\\");
    EXPECT_EQ(texts().source, R"(G:\Docs)");
}

TEST_F(LineEdit, OfTheRightLabelInAReversedLayoutChangesTheSourceAlone) {
    reversed();
    editLine(system, 0, LineSide::right, R"(C:\Papers)");
    EXPECT_EQ(system.lines[0].source, R"(C:\Papers)");
    EXPECT_EQ(system.lines[0].destination, R"(F:\Save)");
    system.operationKind = OperationKind::comparison;
    system.comparisonReversed = true;
    editLine(system, 0, LineSide::right, R"(C:\Files)");
    EXPECT_EQ(system.lines[0].source, R"(C:\Files)");
    EXPECT_EQ(system.lines[0].destination, R"(F:\Save)");
}

TEST_F(LineEdit, OfADriveRootsCopyTakesTheTextWhole) {
    system.lines[0].source = "E:\\";
    reversed();
    EXPECT_EQ(texts().source, R"(F:\Save)");
    editLine(system, 0, LineSide::left, R"(G:\E)");
    EXPECT_EQ(system.lines[0].destination, R"(G:\E)");
}

TEST_F(LineEdit, EmptiedLeftLabelEmptiesTheDestination) {
    reversed();
    editLine(system, 0, LineSide::left, "");
    EXPECT_EQ(system.lines[0].destination, "");
    EXPECT_EQ(texts().source, "");
    EXPECT_EQ(setting("Travail", "Destination0"), "");
}

// ---- two lines that write the same copy --------------------------------------------------------

constexpr const char* text =
    R"(Les lignes 1 et 2 ont la même copie, F:\Save\Docs : de deux fichiers de même nom, un seul y est gardé.)";

class SharedCopies : public LaunchTest {
  protected:
    SharedCopies() {
        system.Confirmation = 0;
        system.Modifie = 1;
        disk().file(R"(E:\Docs\z.txt)", "z");
        setSecond(R"(E:\Docs)", R"(F:\Save)");
    }
    void setSecond(const std::string& source, const std::string& destination) {
        system.lines[1].source = source;
        system.lines[1].destination = destination;
    }
    Events told() { return sharedCopies(system); }
};

TEST_F(SharedCopies, AreToldWhenOneOfTheLinesTakesPart) {
    EXPECT_THAT(told(), ElementsAre(text));
    selectOnly({0});
    EXPECT_THAT(told(), ElementsAre(text));
    selectOnly({1});
    EXPECT_THAT(told(), ElementsAre(text));
    selectOnly({});
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SharedCopies, AreFoundHoweverTheyAreSpelled) {
    setSecond(R"(E:\Docs\.)", R"(F:\\Save\)");
    EXPECT_THAT(told(), ElementsAre(text));
}

TEST_F(SharedCopies, AreNoneOfOneSourceOrOfTwoPlaces) {
    setSecond(R"(C:\Docs\)", R"(F:\Save)");
    EXPECT_THAT(told(), IsEmpty());
    setSecond(R"(E:\Docs)", R"(G:\Save)");
    EXPECT_THAT(told(), IsEmpty());
    setSecond("", R"(F:\Save)");
    EXPECT_THAT(told(), IsEmpty());
    setSecond(R"(E:\Docs)", "");
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SharedCopies, AreToldByTheFirstBackupAndNeitherAgainNorByARestore) {
    OperationLauncher twice(system, host, stage);
    system.operationKind = OperationKind::restore;
    EXPECT_EQ(twice.LanceOperation(RunMode::unattended), RunEnd::nothing);
    EXPECT_THAT(user().notices(), IsEmpty());
    system.operationKind = OperationKind::backup;
    EXPECT_EQ(twice.LanceOperation(RunMode::unattended), RunEnd::finished);
    EXPECT_THAT(user().notices(), ElementsAre(text));
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\z.txt)"));
    EXPECT_EQ(twice.LanceOperation(RunMode::unattended), RunEnd::nothing);
    EXPECT_THAT(user().notices(), ElementsAre(text));
}

}  // namespace
}  // namespace coffrelune
