// Two lines that write the same copy.
#include "operation/shared_copies.h"

#include "operation/launch_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
