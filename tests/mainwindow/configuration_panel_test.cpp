// The configuration in use: its label, choosing another one, describing it.
#include "dialogs/config_form.h"
#include "dialogs/frm_about.h"
#include "dialogs/text_dialogs.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
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

    Texts choices() { return form->configuration.ConfigCb.entries(); }
    std::string choice() { return form->configuration.ConfigCb.selectedText(); }
    /// Opens a dialog that asks for a name, and answers by this one; empty cancels.
    void answerName(const std::string& name) {
        user().stepIn<ConfigNameForm>([this, name](ConfigNameForm& dialog) {
            asked = dialog.caption();
            proposed = dialog.Txt.text();
            dialog.Txt.type(name);
            dialog.Cmd.at(name.empty() ? 1 : 0).click();
        });
    }
    void rename(const std::string& to) {
        answerName(to);
        form->configuration.RenameCmd.click();
    }
    void duplicate(const std::string& as) {
        answerName(as);
        form->configuration.DuplicateCmd.click();
    }

    std::string asked;     // title of the last dialog
    std::string proposed;  // name that it held

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

TEST_F(ConfigurationPanelTest, AllConfigurationsAreOfferedBesideTheName) {
    start(two);
    EXPECT_THAT(choices(), ElementsAre("General", "Travail (Le bureau)"));
    EXPECT_EQ(choice(), "General");
    start(two, "/nouvelle");
    EXPECT_THAT(choices(), ElementsAre("General", "Travail (Le bureau)", "Nouvelle"));
    EXPECT_EQ(choice(), "Nouvelle");
}

TEST_F(ConfigurationPanelTest, TheChoiceShowsAnotherConfigurationAtOnce) {
    start(two, "/essai");
    form->configuration.ConfigCb.pick(1);
    EXPECT_EQ(label(), "Travail (Le bureau)");
    EXPECT_EQ(choice(), "Travail (Le bureau)");
    EXPECT_EQ(left(0), R"(C:\Bureau)");
    EXPECT_EQ(form->schedule.AutoHr.text(), "18:00");
    form->closeBox();
    EXPECT_EQ(stored("Position", "Config"), "Travail");
}

TEST_F(ConfigurationPanelTest, TheChoiceOfTheSameConfigurationReloadsNothing) {
    start(two);
    form->results.TxtCp.append("x");
    form->configuration.ConfigCb.pick(0);
    EXPECT_EQ(form->results.TxtCp.lineCount(), 1U);
}

TEST_F(ConfigurationPanelTest, WhatWasTypedIsStoredBeforeAnotherIsChosen) {
    start(two);
    form->program.PrmToRunTxt.enter();
    form->program.PrmToRunTxt.type("/fin");
    form->configuration.ConfigCb.pick(1);
    EXPECT_EQ(stored("General", "PrmToRun"), "/fin");
    EXPECT_EQ(stored("Travail", "PrmToRun"), "/s");
}

TEST_F(ConfigurationPanelTest, ARefusedTimeKeepsTheConfiguration) {
    start(two);
    form->schedule.AutoHr.enter();
    form->schedule.AutoHr.type("99:99");
    user().answer(Answer::ok);
    form->configuration.ConfigCb.pick(1);
    EXPECT_EQ(system->configurationName, "General");
    EXPECT_EQ(choice(), "General");
}

TEST_F(ConfigurationPanelTest, TheChoiceKeepsAnyNameWhole) {
    start("[General]\nModifie=1\n[Photos (2024)]\nSource0=\"C:\\P\"\n");
    form->configuration.ConfigCb.pick(1);
    EXPECT_EQ(system->configurationName, "Photos (2024)");
    EXPECT_EQ(left(0), R"(C:\P)");
}

TEST_F(ConfigurationPanelTest, RenamingKeepsEverythingButTheName) {
    start(two, "/travail");
    rename("BUREAU");
    EXPECT_EQ(asked, "Renommer la configuration");
    EXPECT_EQ(proposed, "Travail");
    EXPECT_EQ(label(), "Bureau (Le bureau)");
    EXPECT_THAT(choices(), ElementsAre("General", "Bureau (Le bureau)"));
    EXPECT_EQ(choice(), "Bureau (Le bureau)");
    EXPECT_EQ(stored("Bureau", "LastSave"), "03/03/2025 08:05:00");
    EXPECT_EQ(stored("Travail", "LastSave"), "");
    form->closeBox();
    EXPECT_EQ(stored("Position", "Config"), "Bureau");
}

TEST_F(ConfigurationPanelTest, RenamingFollowsTheRulesOfTheDialog) {
    start(two);
    const std::string before = settings();
    rename("");
    rename("General");
    user().answer(Answer::ok);
    rename("TRAVAIL");
    EXPECT_THAT(lastMessage(), IsMessage("Cette configuration existe déjà !",
                                         "Renommer la configuration", MessageIcon::information));
    user().answer(Answer::ok);
    rename("position");
    EXPECT_EQ(lastMessage().text, "Impossible, nom réservé !");
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(label(), "General");
}

TEST_F(ConfigurationPanelTest, OneThatHasNeverBeenStoredIsRenamedToo) {
    start();
    rename("maison");
    EXPECT_EQ(label(), "Maison");
    EXPECT_THAT(choices(), ElementsAre("Maison"));
    form->closeBox();
    EXPECT_EQ(stored("Position", "Config"), "Maison");
}

TEST_F(ConfigurationPanelTest, ARenamingThatCannotBeStoredIsTold) {
    start(two);
    disk().setInUse(settingsFile);
    user().answer(Answer::ok);
    rename("maison");
    EXPECT_EQ(lastMessage().text, "La configuration n'a pas pu être renommée (erreur 32).");
    EXPECT_EQ(label(), "General");
}

class PlannedConfigurationTest : public ConfigurationPanelTest {
  protected:
    PlannedConfigurationTest() {
        std::string advice;
        PlannedTask task;
        for (const char* name : {"General", "Travail"}) {
            task.name = name;
            task.arguments = {"/Auto", std::string("/") + name};
            EXPECT_TRUE(memoryDesktop.tasks().write(task, advice).ok());
        }
    }
    Texts planned() {
        Texts names;
        for (const auto& [name, task] : memoryDesktop.tasks().tasks()) names.push_back(name);
        return names;
    }
};

TEST_F(PlannedConfigurationTest, TakesItsPlanAlongToItsNewName) {
    start(two);
    user().answer(Answer::ok);
    rename("maison");
    EXPECT_THAT(planned(), ElementsAre("Maison", "Travail"));
    EXPECT_THAT(lastMessage(), IsMessage("La sauvegarde planifiée porte maintenant sur « Maison ».",
                                         "Renommer la configuration", MessageIcon::information));
}

TEST_F(PlannedConfigurationTest, IsRenamedAlsoWhenItsPlanStays) {
    start(two);
    memoryDesktop.tasks().fail(error_number::accessDenied);
    user().answer(Answer::ok);
    rename("maison");
    EXPECT_EQ(label(), "Maison");
    EXPECT_THAT(planned(), ElementsAre("General", "Travail"));
    EXPECT_EQ(lastMessage().icon, MessageIcon::exclamation);
}

TEST_F(PlannedConfigurationTest, TakesItsPlanAway) {
    start(two);
    chooseIn([this](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        user().answer(Answer::ok);  // erase it
        user().answer(Answer::ok);  // what is told of the plan
        dialog.Cmd[3].click();
        dialog.Cmd[1].click();
    });
    EXPECT_THAT(planned(), ElementsAre("General"));
    EXPECT_EQ(lastMessage().text, "La planification de « Travail » est retirée.");
}

TEST_F(PlannedConfigurationTest, KeepsItsPlanWhenItCannotBeErased) {
    start(two);
    disk().setInUse(settingsFile);
    chooseIn([this](ConfigForm& dialog) {
        dialog.Liste.pick(1);
        user().answer(Answer::ok);
        dialog.Cmd[3].click();
        dialog.Cmd[1].click();
    });
    EXPECT_THAT(planned(), ElementsAre("General", "Travail"));
}

TEST_F(ConfigurationPanelTest, ADuplicateIsShownAndHasNeverRun) {
    start(two, "/travail");
    duplicate("maison");
    EXPECT_EQ(asked, "Dupliquer la configuration");
    EXPECT_EQ(proposed, "Travail 2");
    EXPECT_EQ(label(), "Maison (Le bureau)");
    EXPECT_EQ(left(0), R"(C:\Bureau)");
    EXPECT_EQ(stored("Maison", "ProgToRun"), R"(C:\fin.exe)");
    EXPECT_EQ(stored("Maison", "LastSave"), "");
    EXPECT_EQ(form->results.LastSaveLbl[0].caption(), "");
    EXPECT_EQ(stored("Travail", "LastSave"), "03/03/2025 08:05:00");
}

TEST_F(ConfigurationPanelTest, DuplicatingFollowsTheRulesOfTheDialog) {
    start(two);
    const std::string before = settings();
    user().answer(Answer::ok);
    duplicate("tra");
    EXPECT_THAT(lastMessage(), IsMessage("Cette configuration existe déjà !",
                                         "Dupliquer la configuration", MessageIcon::information));
    user().answer(Answer::ok);
    duplicate("GENERAL");
    duplicate("");
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(label(), "General");
}

TEST_F(ConfigurationPanelTest, TheAboutBoxOpensFromTheToolbar) {
    start(two);
    user().stepIn<frmAbout>([](frmAbout& about) { about.cmdOK.click(); });
    form->toolbar.TB.pick("APropos");
    EXPECT_THAT(memoryDesktop.registry().calls(), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
