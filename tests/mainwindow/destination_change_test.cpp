// Moving every destination to another drive.
#include "dialogs/drive_list_frm.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

class DestinationChangeTest : public MainFormTest {
  protected:
    void choose(const std::string& root) {
        disk().volume(root);
        user().stepIn<DriveListFrm>([root](DriveListFrm& dialog) {
            for (std::size_t i = 0; i < dialog.ListDrive.rows().size(); ++i) {
                if (dialog.ListDrive.rows()[i].cells.at(0) == root) {
                    dialog.ListDrive.pick(static_cast<int>(i));
                }
            }
            dialog.Cmd[0].click();
        });
    }
};

TEST_F(DestinationChangeTest, GivesEveryDestinationTheChosenDrive) {
    start(
        "[General]\nDestination0=\"D:\\Save\"\nDestination1=\"\\\\nas\\save\"\n"
        "Destination2=\"D:\\\"\nDestination4=\"d:\\Other\\Place\"\n");
    choose(R"(H:\)");
    form->toolbar.TB.pick("ModifDest");
    EXPECT_EQ(stored("Destination0"), R"(H:\Save)");
    EXPECT_EQ(stored("Destination1"), R"(\\nas\save)") << "no drive, left alone";
    EXPECT_EQ(stored("Destination2"), R"(H:\)");
    EXPECT_EQ(stored("Destination3"), "");
    EXPECT_EQ(stored("Destination4"), R"(H:\Other\Place)");
    EXPECT_EQ(right(0), R"(H:\Save)");
    EXPECT_EQ(right(4), R"(H:\Other\Place)");
}

TEST_F(DestinationChangeTest, RefusesDestinationsOnDifferentDrives) {
    start("[General]\nDestination0=\"D:\\Save\"\nDestination3=\"E:\\Save\"\n");
    const std::string before = settings();
    user().answer(Answer::ok);
    form->toolbar.TB.pick("ModifDest");
    EXPECT_THAT(lastMessage(),
                IsMessage("Toutes les sauvegardes doivent être sur la même unité disque !",
                          "Modification de toutes les destinations", MessageIcon::information));
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_EQ(settings(), before);
}

TEST_F(DestinationChangeTest, ChangesNothingWhenTheDriveListIsCancelled) {
    start("[General]\nDestination0=\"D:\\Save\"\n");
    const std::string before = settings();
    user().stepIn<DriveListFrm>([](DriveListFrm& dialog) { dialog.Cmd[1].click(); });
    form->toolbar.TB.pick("ModifDest");
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(right(0), R"(D:\Save)");
}

TEST_F(DestinationChangeTest, ChangesTheDestinationsWhateverTheLabelsShow) {
    startWithLine();
    pickTab("R");
    choose(R"(H:\)");
    form->toolbar.TB.pick("ModifDest");
    EXPECT_EQ(stored("Destination0"), R"(H:\Save)");
    EXPECT_EQ(stored("Source0"), R"(C:\Docs)");
    EXPECT_EQ(left(0), R"(H:\Save\Docs)");
}

TEST_F(DestinationChangeTest, WithoutAnyDriveThereIsNothingToChange) {
    start("[General]\nDestination0=\"\\\\nas\\save\"\n");
    const std::string before = settings();
    choose(R"(H:\)");
    form->toolbar.TB.pick("ModifDest");
    EXPECT_EQ(settings(), before);
}

}  // namespace
}  // namespace coffrelune
