#include "dialogs/drive_list_frm.h"

#include "dialogs/dialog_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class DriveListFrmTest : public DialogTest {
  protected:
    DriveListFrmTest() {
        for (const char* root : {R"(D:\)", R"(E:\)", R"(F:\)"}) disk().volume(root);
        drives().set(R"(C:\)", {"",
                                {"Disque local (C:)", "Disque local", "disque"},
                                std::uint64_t{500} << 30,
                                std::uint64_t{1536} << 20});
        drives().set(R"(D:\)", {"DATA", {"DATA (D:)", "Disque local", "disque"}, 1'024'000, 1});
        drives().set(R"(E:\)", {"", {"", "Lecteur de cartes", "carte"}, 1, 1});
        drives().takeMediumOut(R"(E:\)");
        drives().set(R"(F:\)", {"", {"Vide (F:)", "", ""}, 0, 0});
    }
    MemoryDriveInformation& drives() { return memoryDesktop.driveInformation(); }
    std::string cell(const DriveListFrm& form, std::size_t row, std::size_t column) {
        return form.ListDrive.rows().at(row).cells.at(column);
    }
};

TEST_F(DriveListFrmTest, HasFourColumnsOfTheirWidths) {
    DriveListFrm form(system, desktop);
    EXPECT_EQ(form.caption(), "Choisissez un lecteur pour toutes les destinations");
    EXPECT_EQ(form.Lbl.caption(), "Liste des lecteurs :");
    Texts columns;
    for (const ReportList::Column& column : form.ListDrive.columns()) {
        columns.push_back(column.caption + " " + std::to_string(column.width));
    }
    EXPECT_THAT(columns, ElementsAre("Unité 1000", "Description 2500", "Taille totale 1500",
                                     "Espace libre 1500"));
}

TEST_F(DriveListFrmTest, ListsEveryDriveInTheSystemsOrder) {
    DriveListFrm form(system, desktop);
    Texts roots;
    for (const ReportList::Row& row : form.ListDrive.rows()) roots.push_back(row.cells[0]);
    EXPECT_THAT(roots, ElementsAre(R"(C:\)", R"(D:\)", R"(E:\)", R"(F:\)"));
}

class OddDrives final : public DriveService {
  public:
    std::vector<std::string> roots() override {
        return {R"(\\srv\share)", R"(D:\)", "", R"(E:\Mount\)", "F:", R"(1:\)", R"(g:\)"};
    }
    std::string windowsDirectory() override { return {}; }
    std::string fromNative(const std::string& typed) override { return typed; }
    std::string fromWindow(const std::string& entered) override { return entered; }
};

TEST_F(DriveListFrmTest, SkipsWhatHasNoDriveLetter) {
    OddDrives odd;
    Platform services{memory.files(),  odd,           memory.clock(),
                      memory.locale(), platform.ansi, memory.sounds(),
                      memory.windows()};
    SystemMod other(services, {"", home, 3, 5});
    DriveListFrm form(other, desktop);
    Texts roots;
    for (const ReportList::Row& row : form.ListDrive.rows()) roots.push_back(row.cells[0]);
    EXPECT_THAT(roots, ElementsAre(R"(D:\)", R"(g:\)"));
}

TEST_F(DriveListFrmTest, ShowsDescriptionAndSizes) {
    DriveListFrm form(system, desktop);
    EXPECT_THAT(form.ListDrive.rows()[0].cells,
                ElementsAre(R"(C:\)", "Disque local (C:)", "500 Go", "1,50 Go"));
    EXPECT_THAT(form.ListDrive.rows()[1].cells,
                ElementsAre(R"(D:\)", "DATA (D:)", "0,97 Mo", "1 octet"));
}

TEST_F(DriveListFrmTest, DriveWithoutADisplayNameIsDescribedByItsType) {
    DriveListFrm form(system, desktop);
    EXPECT_EQ(cell(form, 2, 1), "Lecteur de cartes");
}

TEST_F(DriveListFrmTest, SizesOfADriveWithoutAMediumAreNotAvailable) {
    DriveListFrm form(system, desktop);
    EXPECT_EQ(cell(form, 2, 2), "N.A.");
    EXPECT_EQ(cell(form, 2, 3), "N.A.");
}

TEST_F(DriveListFrmTest, SizesOfADriveThatReportsNoneAreNotAvailable) {
    DriveListFrm form(system, desktop);
    EXPECT_EQ(cell(form, 3, 2), "N.A.");
    EXPECT_EQ(cell(form, 3, 3), "N.A.");
}

TEST_F(DriveListFrmTest, FullDriveShowsThatNothingIsFree) {
    drives().set(R"(F:\)", {"", {}, 2048, 0});
    DriveListFrm form(system, desktop);
    EXPECT_EQ(cell(form, 3, 2), "2,00 Ko");
    EXPECT_EQ(cell(form, 3, 3), "0 octet");
}

TEST_F(DriveListFrmTest, EachIconIsKeptOnce) {
    DriveListFrm form(system, desktop);
    EXPECT_THAT(form.ListDrive.images(), ElementsAre("disque", "carte"));
    EXPECT_EQ(form.ListDrive.rows()[1].image, "disque");
}

TEST_F(DriveListFrmTest, OkWithoutASelectionAsksForOne) {
    DriveListFrm form(system, desktop);
    user().answer(Answer::ok);
    form.Cmd[0].click();
    EXPECT_THAT(lastMessage(), IsMessage("Sélectionnez d'abord un lecteur !",
                                         "Choisissez un lecteur pour toutes les destinations",
                                         MessageIcon::exclamation));
    EXPECT_TRUE(form.open());
    EXPECT_EQ(form.result(), "0");
}

TEST_F(DriveListFrmTest, OkHandsTheSelectedDriveBack) {
    DriveListFrm form(system, desktop);
    EXPECT_EQ(form.result(), "0");
    show<DriveListFrm>(form, [](DriveListFrm& open) {
        open.ListDrive.pick(1);
        open.Cmd[0].click();
    });
    EXPECT_FALSE(form.open());
    EXPECT_EQ(form.result(), "1");
    EXPECT_EQ(form.drive(), R"(D:\)");
}

TEST_F(DriveListFrmTest, DoubleClickActsAsOk) {
    DriveListFrm form(system, desktop);
    show<DriveListFrm>(form, [](DriveListFrm& open) { open.ListDrive.doubleClick(0); });
    EXPECT_EQ(form.result(), "1");
    EXPECT_EQ(form.drive(), R"(C:\)");
}

TEST_F(DriveListFrmTest, CancelAndCloseBoxChooseNothing) {
    DriveListFrm cancelled(system, desktop);
    show<DriveListFrm>(cancelled, [](DriveListFrm& open) {
        open.ListDrive.pick(1);
        open.Cmd[1].click();
    });
    EXPECT_EQ(cancelled.result(), "0");
    EXPECT_EQ(cancelled.drive(), "");
    DriveListFrm closed(system, desktop);
    show<DriveListFrm>(closed, [](DriveListFrm& open) {
        open.ListDrive.pick(1);
        open.closeBox();
    });
    EXPECT_EQ(closed.result(), "0");
}

}  // namespace
}  // namespace coffrelune
