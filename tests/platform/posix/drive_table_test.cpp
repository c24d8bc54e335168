#include "platform/posix/drive_table.h"

#include <gmock/gmock.h>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class DriveLettersTest : public testing::Test {
  protected:
    std::map<std::string, char> assign(const std::vector<std::string>& identities) {
        DriveLetters letters(file());
        return letters.assign(identities);
    }
    std::string file() const { return disk_.at("Lecteurs.ini"); }

    TemporaryDirectory disk_;
};

TEST_F(DriveLettersTest, StartAtDAndAreRemembered) {
    EXPECT_THAT(assign({"uuid:A-1", "path:/mnt/x"}),
                ElementsAre(Pair("path:/mnt/x", 'E'), Pair("uuid:A-1", 'D')));
    EXPECT_THAT(disk_.read("Lecteurs.ini"), HasSubstr("[Lecteurs]\nD=uuid:A-1\nE=path:/mnt/x\n"));
    EXPECT_THAT(assign({"path:/mnt/x"}), ElementsAre(Pair("path:/mnt/x", 'E')));
    EXPECT_THAT(disk_.names(), ElementsAre("Lecteurs.ini"));
}

TEST_F(DriveLettersTest, AbsentVolumeKeepsItsLetter) {
    assign({"uuid:A-1", "uuid:B-2"});
    EXPECT_THAT(assign({"uuid:C-3"}), ElementsAre(Pair("uuid:C-3", 'F')));
    EXPECT_THAT(assign({"uuid:C-3", "uuid:A-1"}),
                ElementsAre(Pair("uuid:A-1", 'D'), Pair("uuid:C-3", 'F')));
}

TEST_F(DriveLettersTest, VolumesBeyondTheLastLetterGetNone) {
    std::vector<std::string> many;
    for (int i = 10; i < 40; ++i) many.push_back("uuid:N-" + std::to_string(i));
    const auto assigned = assign(many);
    EXPECT_EQ(assigned.size(), 23U);
    EXPECT_EQ(assigned.at("uuid:N-32"), 'Z');
    EXPECT_FALSE(assigned.contains("uuid:N-33"));
}

TEST_F(DriveLettersTest, HoldForThisProcessWhenTheyCannotBeWritten) {
    DriveLetters letters(disk_.at("absent/Lecteurs.ini"));
    EXPECT_THAT(letters.assign({"uuid:A-1"}), ElementsAre(Pair("uuid:A-1", 'D')));
    EXPECT_THAT(letters.assign({"uuid:B-2", "uuid:A-1"}),
                ElementsAre(Pair("uuid:A-1", 'D'), Pair("uuid:B-2", 'E')));
    EXPECT_THAT(disk_.names(), IsEmpty());
}

TEST_F(DriveLettersTest, MountPointsOfAnyBytesComeBack) {
    const std::string odd = "path:/mnt/a\nD=uuid:b \\ é\x01";
    EXPECT_THAT(assign({odd, "uuid:A-1"}), ElementsAre(Pair(odd, 'D'), Pair("uuid:A-1", 'E')));
    EXPECT_THAT(assign({odd}), ElementsAre(Pair(odd, 'D')));
}

TEST_F(DriveLettersTest, UnderstandAFileThatAnEditorSavedWithCrLf) {
    disk_.write("Lecteurs.ini", "; note\r\n\r\n[Lecteurs]\r\nF=uuid:A-1\r\n");
    EXPECT_THAT(assign({"uuid:A-1", "uuid:B-2"}),
                ElementsAre(Pair("uuid:A-1", 'F'), Pair("uuid:B-2", 'D')));
}

// Whatever happened to the file: nobody gets a letter that may be another's, and the file stays.
TEST_F(DriveLettersTest, DamagedFileNeverGivesALetterToAnotherVolume) {
    const std::string damages[] = {
        "",
        std::string(200, '\0'),
        std::string("\xFF\xFE[\0L", 5),
        "D=uuid:A-1\n",
        "[Autre]\nD=uuid:A-1\n",
        "[Lecteurs]\nD=uuid:A-",
        "[Lecteurs]\nE=uuid:B-2\nD",
        "[Lecteurs]\nE=uuid:B-2\n?=uuid:A-1\n",
        "[Lecteurs]\nE=uuid:B-2\nD=\n",
        "[Lecteurs]\nE=uuid:B-2\nD=uuid:A 1\n",
        "[Lecteurs]\nE=uuid:B-2\nd=uuid:A-1\n",
        "[Lecteurs]\nE=uuid:B-2\nC=uuid:A-1\n",
        "[Lecteurs]\nE=uuid:B-2\nD=path:/mnt/\\99\n",
    };
    for (const std::string& damage : damages) {
        disk_.write("Lecteurs.ini", damage);
        const auto assigned = assign({"uuid:new", "uuid:B-2"});
        EXPECT_FALSE(assigned.contains("uuid:new")) << damage;
        const auto known = assigned.find("uuid:B-2");
        EXPECT_TRUE(known == assigned.end() || known->second == 'E') << damage;
        EXPECT_EQ(disk_.read("Lecteurs.ini"), damage);
    }
}

TEST_F(DriveLettersTest, LineThatIsWholeHoldsInADamagedFile) {
    disk_.write("Lecteurs.ini", "[Lecteurs]\nD=uuid:A-1\nE=uu");
    EXPECT_THAT(assign({"uuid:A-1", "uuid:B-2"}), ElementsAre(Pair("uuid:A-1", 'D')));
}

TEST_F(DriveLettersTest, ContradictionLeavesTheLettersConcernedInDoubt) {
    disk_.write("Lecteurs.ini",
                "[Lecteurs]\nD=uuid:A-1\nD=uuid:B-2\nE=uuid:C-3\nF=uuid:C-3\n"
                "G=uuid:D-4\n");
    EXPECT_THAT(assign({"uuid:A-1", "uuid:B-2", "uuid:C-3", "uuid:D-4"}),
                ElementsAre(Pair("uuid:D-4", 'G')));
    EXPECT_THAT(assign({"uuid:new"}), IsEmpty());
}

TEST_F(DriveLettersTest, UnreadableFileGivesNoLetter) {
    disk_.makeDirectory("Lecteurs.ini");
    EXPECT_THAT(assign({"uuid:A-1"}), IsEmpty());
}

TEST_F(DriveLettersTest, LetterOfThisRunOutlastsAFileThatIsDamagedMeanwhile) {
    DriveLetters letters(file());
    letters.assign({"uuid:A-1"});
    disk_.write("Lecteurs.ini", "[Lecteurs]\nD=uuid:B-2\n");
    EXPECT_THAT(letters.assign({"uuid:A-1", "uuid:B-2"}), ElementsAre(Pair("uuid:A-1", 'D')));
    EXPECT_EQ(disk_.read("Lecteurs.ini"), "[Lecteurs]\nD=uuid:B-2\n");
}

}  // namespace
}  // namespace coffrelune
