#include "dialogs/frm_about.h"

#include "dialogs/dialog_fixture.h"
#include "settings/registres.h"

namespace coffrelune {
namespace {

using Root = RegistryService::Root;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FrmAbout : public DialogTest {
  protected:
    FrmAbout() {
        loadSettings("[Position]\nConfig=Travail\n");
        registry().addKey(Root::currentUser, Registres::runKey);
    }
    MemoryRegistry& registry() { return memoryDesktop.registry(); }
    MemoryShell& shell() { return memoryDesktop.shell(); }
    std::string runValue() {
        return registry().value(Root::currentUser, Registres::runKey, "Coffrelune");
    }
    void showAndClick(std::function<void(frmAbout&)> action) {
        frmAbout box(system, desktop);
        show<frmAbout>(box, std::move(action));
        EXPECT_FALSE(box.open());
    }
};

TEST_F(FrmAbout, NamesTheProgramAndItsVersion) {
    frmAbout box(system, desktop);
    EXPECT_EQ(box.caption(), "À propos de Coffrelune");
    EXPECT_EQ(box.VersionLbl.caption(), "Version 3.05");
    EXPECT_EQ(box.TitleLbl.caption(), "Coffrelune");
    EXPECT_EQ(box.NoticeFrame.caption(), "Avertissement:");
    EXPECT_EQ(box.AutoCheck.caption(), "&Lancement automatique au démarrage de Windows");
    EXPECT_NE(box.CommentLbl.caption(), "");
    EXPECT_NE(box.NoticeLbl.caption(), "");
    EXPECT_THAT(box.labels(), SizeIs(5));
}

TEST_F(FrmAbout, MinorVersionHasTwoDigits) {
    SystemMod later(platform, {"", home, 12, 12});
    EXPECT_EQ(frmAbout(later, desktop).VersionLbl.caption(), "Version 12.12");
}

TEST_F(FrmAbout, PlaysTheStartSound) {
    frmAbout box(system, desktop);
    EXPECT_THAT(shell().systemSounds(), ElementsAre("SystemStart"));
}

TEST_F(FrmAbout, IsSilentWithoutAWaveDevice) {
    memory.sounds().setDeviceCount(0);
    frmAbout box(system, desktop);
    EXPECT_THAT(shell().systemSounds(), IsEmpty());
}

TEST_F(FrmAbout, ShowsTheRememberedAutoStart) {
    EXPECT_FALSE(frmAbout(system, desktop).AutoCheck.checked());
    system.AutoStart = -1;
    EXPECT_TRUE(frmAbout(system, desktop).AutoCheck.checked());
}

TEST_F(FrmAbout, UntouchedBoxWritesNothing) {
    for (const std::int16_t remembered : std::initializer_list<std::int16_t>{0, -1, 1}) {
        system.AutoStart = remembered;
        showAndClick([](frmAbout& box) { box.cmdOK.click(); });
        EXPECT_EQ(system.AutoStart, remembered);
    }
    EXPECT_EQ(writeCount(), 0U);
    EXPECT_THAT(registry().calls(), IsEmpty());
}

TEST_F(FrmAbout, BoxTickedAndUntickedAgainWritesNothing) {
    showAndClick([](frmAbout& box) {
        box.AutoCheck.click();
        box.AutoCheck.click();
        box.cmdOK.click();
    });
    EXPECT_EQ(writeCount(), 0U);
    EXPECT_THAT(registry().calls(), IsEmpty());
}

TEST_F(FrmAbout, TickedBoxStartsTheProgramAtLogon) {
    showAndClick([](frmAbout& box) {
        box.AutoCheck.click();
        box.cmdOK.click();
    });
    EXPECT_EQ(system.AutoStart, -1);
    EXPECT_EQ(setting("Position", "AutoStart"), "-1");
    EXPECT_EQ(runValue(), R"(C:\Coffrelune\coffrelune.exe)");
}

TEST_F(FrmAbout, UntickedBoxTakesItAwayForTheUserAndTheMachine) {
    system.AutoStart = -1;
    registry().addKey(Root::localMachine, Registres::runKey);
    (void)registry().setText(Root::currentUser, Registres::runKey, "Coffrelune", "a");
    (void)registry().setText(Root::localMachine, Registres::runKey, "Coffrelune", "b");
    showAndClick([](frmAbout& box) {
        box.AutoCheck.click();
        box.cmdOK.click();
    });
    EXPECT_EQ(system.AutoStart, 0);
    EXPECT_EQ(setting("Position", "AutoStart"), "0");
    EXPECT_EQ(runValue(), "");
    EXPECT_EQ(registry().value(Root::localMachine, Registres::runKey, "Coffrelune"), "");
}

TEST_F(FrmAbout, CloseBoxCarriesTheChoiceOutToo) {
    showAndClick([](frmAbout& box) {
        box.AutoCheck.click();
        box.closeBox();
    });
    EXPECT_EQ(setting("Position", "AutoStart"), "-1");
    EXPECT_NE(runValue(), "");
}

TEST_F(FrmAbout, EscapeAndEnterPressOk) {
    frmAbout box(system, desktop);
    ASSERT_EQ(box.cancelButton(), &box.cmdOK);
    ASSERT_EQ(box.defaultButton(), &box.cmdOK);
    box.AutoCheck.click();
    box.cancelButton()->click();
    EXPECT_FALSE(box.open());
    EXPECT_EQ(setting("Position", "AutoStart"), "-1");
}

TEST_F(FrmAbout, ChoiceStaysWhenTheRegistryRefusesIt) {
    MemoryDesktop withoutKeys;
    Desktop refusing = withoutKeys.desktop();
    frmAbout box(system, refusing);
    box.AutoCheck.click();
    box.cmdOK.click();
    EXPECT_EQ(system.AutoStart, -1);
    EXPECT_EQ(setting("Position", "AutoStart"), "-1");
    EXPECT_TRUE(frmAbout(system, refusing).AutoCheck.checked());
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(FrmAbout, ValueThatAnotherProgramRemovedComesBackAfterOffAndOn) {
    system.AutoStart = -1;
    showAndClick([](frmAbout& box) { box.cmdOK.click(); });
    EXPECT_EQ(runValue(), "");
    for (int i = 0; i < 2; ++i) {
        showAndClick([](frmAbout& box) {
            box.AutoCheck.click();
            box.cmdOK.click();
        });
    }
    EXPECT_EQ(runValue(), R"(C:\Coffrelune\coffrelune.exe)");
}

TEST_F(FrmAbout, LinkOpensItsAddressByAClickAndByADrop) {
    frmAbout box(system, desktop);
    const std::string address = box.WebLbl.address();
    EXPECT_EQ(address.rfind("https://", 0), 0U);
    box.WebLbl.click();
    EXPECT_THAT(shell().opened(), ElementsAre(MemoryShell::Opened{address, ""}));
    box.WebLbl.drop();
    EXPECT_THAT(shell().opened(), SizeIs(2));
    EXPECT_TRUE(box.open());
}

TEST_F(FrmAbout, LinkIsHighlightedWhileThePointerIsOverIt) {
    frmAbout box(system, desktop);
    EXPECT_FALSE(box.WebLbl.hovered());
    box.WebLbl.hover(true);
    EXPECT_TRUE(box.WebLbl.hovered());
    box.WebLbl.hover(false);
    EXPECT_FALSE(box.WebLbl.hovered());
}

}  // namespace
}  // namespace coffrelune
