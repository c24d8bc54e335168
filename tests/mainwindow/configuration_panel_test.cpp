// The configuration in use: its label, choosing another one, describing it.
#include "dialogs/config_form.h"
#include "dialogs/frm_about.h"
#include "dialogs/text_dialogs.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

constexpr const char* two =
    "[General]\n"
    "Source0=\"C:\\Docs\"\nDestination0=\"F:\\Save\"\nAutoTime=12:00\nAutoSave=1\n"
    "LastSave=13/03/2025 12:00:10\n"
    "[Travail]\n"
    "Description=\"Le bureau\"\nSource0=\"C:\\Bureau\"\nDestination0=\"G:\\Save\"\nSelect0=1\n"
    "SelectP=1\nProgToRun=C:\\fin.exe\nPrmToRun=/s\nModifie=1\nConfirmation=1\nAutoTime=18:00\n"
    "LastSave=03/03/2025 08:05:00\n";

class ConfigurationPanelTest : public MainFormTest {
  protected:
    std::string label() { return form->configuration.ConfigLbl.caption(); }

    void chooseIn(std::function<void(ConfigForm&)> action) {
        user().stepIn<ConfigForm>(std::move(action));
        form->toolbar.TB.pick("Config");
    }
    static void pickLineCount(ConfigForm& dialog, const std::string& number) {
        const auto& entries = dialog.RepMaxCb.entries();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i] == number) dialog.RepMaxCb.pick(static_cast<int>(i));
        }
    }
};

TEST_F(ConfigurationPanelTest, ShowsTheNameWithItsDescription) {
    start(two);
    EXPECT_EQ(label(), "General");
    start(two, "/travail");
    EXPECT_EQ(label(), "Travail (Le bureau)");
    start(two, "/nouvelle");
    EXPECT_EQ(label(), "Nouvelle");
}

TEST_F(ConfigurationPanelTest, ADescriptionIsShownAtOnce) {
    start(two);
    user().stepIn<DescriptionForm>([](DescriptionForm& dialog) {
        dialog.Txt.type("Tout");
        dialog.Cmd[0].click();
    });
    form->toolbar.TB.pick("Description");
    EXPECT_EQ(label(), "General (Tout)");
    EXPECT_EQ(stored("Description"), "Tout");
}

TEST_F(ConfigurationPanelTest, AnotherConfigurationIsShownInEverything) {
    start(two);
    chooseIn([](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        dialog.Cmd[0].click();
    });
    EXPECT_EQ(system->configurationName, "Travail");
    EXPECT_EQ(label(), "Travail (Le bureau)");
    EXPECT_EQ(left(0), R"(C:\Bureau)");
    EXPECT_TRUE(row(0).ChkS.checked());
    EXPECT_TRUE(form->schedule.Opt[0].checked());
    EXPECT_TRUE(form->schedule.Opt[1].checked());
    EXPECT_FALSE(form->schedule.Opt[2].checked());
    EXPECT_FALSE(form->schedule.Timer1.enabled());
    EXPECT_EQ(form->schedule.AutoHr.text(), "18:00");
    EXPECT_TRUE(form->program.ChkProg.checked());
    EXPECT_EQ(form->program.ProgToRunTxt.text(), R"(C:\fin.exe)");
    EXPECT_EQ(form->program.PrmToRunTxt.text(), "/s");
    EXPECT_EQ(form->results.LastSaveLbl[0].caption(),
              "Dernière sauvegarde sans erreur le lun. 3 mars 2025 à 08:05");
    EXPECT_EQ(stored("Position", "Config"), "") << "remembered at the close";
    chooseIn([](ConfigForm& dialog) {
        dialog.Liste.pick(0);
        dialog.Cmd[0].click();
    });
    EXPECT_TRUE(form->schedule.Timer1.enabled());
}

TEST_F(ConfigurationPanelTest, LoadingWritesNothingIntoTheConfiguration) {
    start(two);
    chooseIn([](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        dialog.Cmd[0].click();
    });
    const std::string after = settings();
    EXPECT_EQ(after.substr(after.find("[General]"), std::string(two).size()), two);
}

TEST_F(ConfigurationPanelTest, TabAndDirectionStayAndTheComparisonIsCleared) {
    start(two);
    pickTab("C");
    form->Cmd.at(4).click();
    form->results.TxtCp.append("x");
    chooseIn([](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        dialog.Cmd[0].click();
    });
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "C");
    EXPECT_TRUE(system->comparisonReversed);
    EXPECT_EQ(form->Cmd.at(4).caption(), "Comparaison Destination -> Source");
    EXPECT_EQ(form->Cmd.at(1).caption(), "Lancer la Comparaison");
    EXPECT_EQ(left(0), R"(G:\Save\Bureau)");
    EXPECT_EQ(form->results.TxtCp.lineCount(), 0U);
    EXPECT_EQ(form->results.LblComp.caption(), "Aucune comparaison effectuée.");
}

TEST_F(ConfigurationPanelTest, WithoutAChangeADueBackupAndAComparisonSurvive) {
    setClock(2025, 3, 14, 11);
    start(two);
    form->results.TxtCp.append("x");
    setClock(2025, 3, 14, 12, 30);
    for (const std::size_t button : {std::size_t{0}, std::size_t{1}}) {
        chooseIn([button](ConfigForm& dialog) { dialog.Cmd.at(button).click(); });
        EXPECT_EQ(system->nextDate, "14/03/2025");
        EXPECT_EQ(form->results.TxtCp.lineCount(), 1U);
    }
    EXPECT_EQ(tick(), 1);
}

TEST_F(ConfigurationPanelTest, CancellingForgetsWhatWasSelected) {
    start(two);
    chooseIn([](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        pickLineCount(dialog, "9");
        dialog.Cmd[1].click();
    });
    EXPECT_EQ(system->configurationName, "General");
    EXPECT_EQ(form->lines.count(), 6);
    EXPECT_EQ(stored("Position", "RepertMax"), "");
}

TEST_F(ConfigurationPanelTest, OkWithNothingSelectedKeepsTheConfiguration) {
    start();
    chooseIn([](ConfigForm& dialog) {
        EXPECT_EQ(dialog.Liste.selection(), -1);
        dialog.Cmd[0].click();
    });
    EXPECT_EQ(system->configurationName, "General");
    row(0).LblS.drop({true, R"(C:\Docs)", {}});
    EXPECT_EQ(stored("Source0"), R"(C:\Docs)");
}

TEST_F(ConfigurationPanelTest, MoreLinesBringBackThoseThatWereHidden) {
    start("[Position]\nRepertMax=2\n" + std::string(two) +
          "[General]\nSource3=\"C:\\Hidden\"\nDestination3=\"H:\\\"\n");
    ASSERT_EQ(form->lines.count(), 2);
    chooseIn([](ConfigForm& dialog) {
        pickLineCount(dialog, "4");
        dialog.Cmd[0].click();
    });
    EXPECT_EQ(form->lines.count(), 4);
    EXPECT_EQ(stored("Position", "RepertMax"), "4");
    EXPECT_EQ(system->configurationName, "General");
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(left(3), stored("Source3"));
}

TEST_F(ConfigurationPanelTest, NameAndNumberMayChangeTogether) {
    start(two);
    chooseIn([](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        pickLineCount(dialog, "12");
        dialog.Cmd[0].click();
    });
    EXPECT_EQ(system->configurationName, "Travail");
    EXPECT_EQ(form->lines.count(), 12);
    EXPECT_EQ(left(0), R"(C:\Bureau)");
}

TEST_F(ConfigurationPanelTest, ALowerNumberCutsTheRows) {
    start(two);
    row(5).LblS.press();
    chooseIn([](ConfigForm& dialog) {
        pickLineCount(dialog, "1");
        dialog.Cmd[0].click();
    });
    EXPECT_EQ(form->lines.count(), 1);
    EXPECT_FALSE(form->toolbar.TB.find("LigneUp")->enabled);
}

TEST_F(ConfigurationPanelTest, TheAboutBoxOpensFromTheToolbar) {
    start(two);
    user().stepIn<frmAbout>([](frmAbout& about) { about.cmdOK.click(); });
    form->toolbar.TB.pick("APropos");
    EXPECT_THAT(memoryDesktop.registry().calls(), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
