#include "operation/shared_host.h"

#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

class Lines : public OperationTest {
  protected:
    SharedHost lines{system};
};

TEST_F(Lines, AreThoseOfTheSharedState) {
    selectOnly({1});
    EXPECT_EQ(lines.lineCount(), 6);
    EXPECT_FALSE(lines.lineSelected(0));
    EXPECT_TRUE(lines.lineSelected(1));
    EXPECT_EQ(lines.lineSource(0), R"(C:\Docs)");
    EXPECT_EQ(lines.lineDestination(0), R"(F:\Save)");
}

TEST_F(Lines, ShowTheCopyFirstInARestore) {
    system.operationKind = OperationKind::restore;
    EXPECT_EQ(lines.lineSource(0), R"(F:\Save\Docs)");
    EXPECT_EQ(lines.lineDestination(0), R"(C:\Docs)");
}

TEST_F(Lines, ShowTheCopyFirstInAReversedComparisonOnly) {
    system.operationKind = OperationKind::comparison;
    EXPECT_EQ(lines.lineSource(0), R"(C:\Docs)");
    system.comparisonReversed = true;
    EXPECT_EQ(lines.lineSource(0), R"(F:\Save\Docs)");
    system.operationKind = OperationKind::backup;
    EXPECT_EQ(lines.lineSource(0), R"(C:\Docs)");
}

TEST_F(Lines, ReversedJoinWithExactlyOneBackslash) {
    system.operationKind = OperationKind::restore;
    system.destinations[0] = R"(F:\)";
    EXPECT_EQ(lines.lineSource(0), R"(F:\Docs)");
}

TEST_F(Lines, ReversedShowTheDestinationAloneForADriveRoot) {
    system.operationKind = OperationKind::restore;
    system.sources[0] = R"(E:\)";
    EXPECT_EQ(lines.lineSource(0), R"(F:\Save)");
    EXPECT_EQ(lines.lineDestination(0), R"(E:\)");
}

TEST_F(Lines, ReversedShowNothingWithoutADestination) {
    system.operationKind = OperationKind::restore;
    system.destinations[0].clear();
    EXPECT_EQ(lines.lineSource(0), "");
    EXPECT_EQ(lines.lineDestination(0), R"(C:\Docs)");
}

}  // namespace
}  // namespace coffrelune
