#include "dialogs/config_form.h"
#include "dialogs/dialog_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ConfigFormOptions : public DialogTest {
  protected:
    ConfigFormOptions() { loadSettings("[Position]\nConfig=Travail\n[Travail]\nSource0=C:\\B\n"); }

    void placeSounds(const Texts& names) {
        for (const std::string& name : names) disk().file(std::string(home) + "\\" + name, "RIFF");
    }
    std::string numbers() {
        std::string joined;
        const ConfigForm form(system);
        for (const std::string& entry : form.RepMaxCb.entries()) joined += entry + " ";
        return joined + "[" + form.RepMaxCb.selectedText() + "]";
    }
    void press(std::size_t button) {
        ConfigForm form(system);
        form.Cmd.at(button).click();
    }
};

TEST_F(ConfigFormOptions, HaveTheirCaptions) {
    ConfigForm form(system);
    Texts captions;
    for (const CheckBox& box : form.Opt) captions.push_back(box.caption());
    EXPECT_THAT(captions,
                ElementsAre("Copie seulement les fichiers plus &récents:",
                            "Efface l'attribut '&Lecture seule' pendant la copie:",
                            "Copie seulement l'&arborescence des répertoires:",
                            "Emettre un signal &sonore à la fin de la copie:",
                            "Synchronise la date des fichiers pendant la copie:",
                            "Continuer la copie en cas d'erreur:", "Mode de copie alternative:",
                            "Désactive la correction Heure d'été:",
                            "Efface les fichiers excédentaires sur la destination:"));
}

TEST_F(ConfigFormOptions, EachBoxShowsItsOwnOption) {
    const auto checkedBox = [this] {
        const ConfigForm form(system);
        std::string checked;
        for (std::size_t i = 0; i < form.Opt.size(); ++i) {
            if (form.Opt.at(i).checked()) checked += std::to_string(i);
        }
        system.options = CopyOptions();
        return checked;
    };
    CopyOptions& options = system.options;
    EXPECT_EQ(checkedBox(), "");
    options.RecentSeul = -1;
    EXPECT_EQ(checkedBox(), "0");
    options.DelReadOnly = 1;
    EXPECT_EQ(checkedBox(), "1");
    options.ArbreMode = -1;
    EXPECT_EQ(checkedBox(), "2");
    options.SignalSonore = -1;
    EXPECT_EQ(checkedBox(), "3");
    options.SynchroDate = -1;
    EXPECT_EQ(checkedBox(), "4");
    options.ContinueOnError = -1;
    EXPECT_EQ(checkedBox(), "5");
    options.AltCopie = -1;
    EXPECT_EQ(checkedBox(), "6");
    options.CorrectEteOff = -1;
    EXPECT_EQ(checkedBox(), "7");
    options.SynchroCopie = -1;
    EXPECT_EQ(checkedBox(), "8");
}

TEST_F(ConfigFormOptions, TickedOptionsAreStoredInTheirOrder) {
    ConfigForm form(system);
    for (CheckBox& box : form.Opt) box.click();
    form.Cmd[0].click();
    EXPECT_THAT(settings(), HasSubstr("Config=Travail\nRecentSeul=-1\nDelReadOnly=-1\n"
                                      "ContinueOnError=-1\nSynchroCopie=-1\nAltCopie=-1\n"
                                      "CorrectEteOff=-1\nSynchroDate=-1\nArbreMode=-1\n"
                                      "SignalSonore=-1\n"));
    EXPECT_EQ(system.options.RecentSeul, -1);
    EXPECT_EQ(system.options.DelReadOnly, -1);
    EXPECT_EQ(system.options.ArbreMode, -1);
    EXPECT_EQ(system.options.SignalSonore, -1);
    EXPECT_EQ(system.options.SynchroDate, -1);
    EXPECT_EQ(system.options.ContinueOnError, -1);
    EXPECT_EQ(system.options.AltCopie, -1);
    EXPECT_EQ(system.options.CorrectEteOff, -1);
    EXPECT_EQ(system.options.SynchroCopie, -1);
}

TEST_F(ConfigFormOptions, UntickedOptionIsStoredAs0) {
    system.options.SynchroCopie = -1;
    ConfigForm form(system);
    form.Opt[8].click();
    form.Cmd[0].click();
    EXPECT_EQ(system.options.SynchroCopie, 0);
    EXPECT_EQ(setting("Position", "SynchroCopie"), "0");
}

TEST_F(ConfigFormOptions, UnchangedOptionsAreNotWritten) {
    placeSounds({"Ok.wav", "Erreur.wav"});
    system.options.ArbreMode = -1;
    press(0);
    for (const char* key : {"RecentSeul", "DelReadOnly", "ContinueOnError", "SynchroCopie",
                            "AltCopie", "CorrectEteOff", "SynchroDate", "ArbreMode"}) {
        EXPECT_THAT(settings(), Not(HasSubstr(key)));
    }
}

TEST_F(ConfigFormOptions, OffersAllNumbersOfLinesForOneLineInUse) {
    EXPECT_EQ(numbers(), "1 2 3 4 5 6 7 8 9 10 11 12 [6]");
}

TEST_F(ConfigFormOptions, OffersNoFewerLinesThanTheCurrentConfigurationUses) {
    system.resizeLines(9);
    system.lines[7].destination = R"(F:\Save)";
    EXPECT_EQ(numbers(), "8 9 10 11 12 [10]");
}

TEST_F(ConfigFormOptions, OffersNoFewerLinesThanAnyOtherConfigurationUses) {
    (void)system.WriteSetting("Photos", "Source4", R"(C:\Photos)");
    EXPECT_EQ(numbers(), "5 6 7 8 9 10 11 12 [6]");
    (void)system.WriteSetting("Musique", "Destination5", R"(F:\)");
    EXPECT_EQ(numbers(), "6 7 8 9 10 11 12 [6]");
}

TEST_F(ConfigFormOptions, AllTwelveLinesInUseLeaveOneNumber) {
    system.resizeLines(11);
    system.lines[11].source = R"(C:\)";
    EXPECT_EQ(numbers(), "12 [12]");
}

TEST_F(ConfigFormOptions, NumberBeyondTwelveStaysOnOffer) {
    system.resizeLines(19);
    system.lines[9].source = R"(C:\)";
    EXPECT_EQ(numbers(), "10 11 12 20 [20]");
    system.lines[15].source = R"(C:\)";
    EXPECT_EQ(numbers(), "20 [20]");
    press(0);
    EXPECT_EQ(system.pendingMaximumIndex, 19);
}

TEST_F(ConfigFormOptions, OkHandsTheChosenNumberOfLinesBack) {
    system.pendingMaximumIndex = 1;
    ConfigForm form(system);
    EXPECT_EQ(system.pendingMaximumIndex, 5);
    form.RepMaxCb.pick(8);
    EXPECT_EQ(system.pendingMaximumIndex, 5);
    form.Cmd[0].click();
    EXPECT_EQ(system.pendingMaximumIndex, 8);
    EXPECT_EQ(system.maximumIndex, 5);
    EXPECT_EQ(setting("Position", "RepertMax"), "");
}

TEST_F(ConfigFormOptions, OkWithoutANumberKeepsTheCurrentOne) {
    ConfigForm form(system);
    form.RepMaxCb.pick(-1);
    form.Cmd[0].click();
    EXPECT_EQ(system.pendingMaximumIndex, 5);
}

TEST_F(ConfigFormOptions, SoundsAreThoseOfTheSettingsDirectory) {
    placeSounds({"Gong.wav", "Ok.wav", "Ok.mp3", "v1.2.wav", "wav"});
    disk().directory(std::string(home) + R"(\Dir.wav)");
    disk().file(R"(C:\Ailleurs.wav)");
    const ConfigForm form(system);
    EXPECT_THAT(form.FichSonCb[0].entries(), ElementsAre("Gong", "Ok", "v1.2"));
    EXPECT_THAT(form.FichSonCb[1].entries(), ElementsAre("Gong", "Ok", "v1.2"));
}

TEST_F(ConfigFormOptions, SoundThatCouldNotBePlayedIsNotListed) {
    placeSounds({"Gong.WAV", "Ok.wav"});
    EXPECT_THAT(ConfigForm(system).FichSonCb[0].entries(), ElementsAre("Ok"));
}

TEST_F(ConfigFormOptions, StoredSoundIsSelectedWhateverItsCase) {
    placeSounds({"Bip.wav", "erreur.wav", "OK.wav"});
    const ConfigForm form(system);
    EXPECT_EQ(form.FichSonCb[0].selectedText(), "OK");
    EXPECT_EQ(form.FichSonCb[1].selectedText(), "erreur");
}

TEST_F(ConfigFormOptions, FirstOfSeveralMatchingSoundsIsSelected) {
    placeSounds({"OK.wav", "Ok.wav"});
    const ConfigForm form(system);
    EXPECT_EQ(form.FichSonCb[0].selection(), 0);
}

TEST_F(ConfigFormOptions, FirstSoundIsSelectedWhenTheStoredOneIsGone) {
    placeSounds({"Bip.wav", "Gong.wav"});
    const ConfigForm form(system);
    EXPECT_EQ(form.FichSonCb[0].selectedText(), "Bip");
    EXPECT_EQ(form.FichSonCb[1].selectedText(), "Bip");
}

TEST_F(ConfigFormOptions, OkStoresTheSounds) {
    placeSounds({"Bip.wav", "Gong.wav"});
    ConfigForm form(system);
    form.FichSonCb[0].pick(1);
    form.Cmd[0].click();
    EXPECT_THAT(system.soundNames, ElementsAre("Gong", "Bip"));
    EXPECT_EQ(setting("Position", "SignalOk"), "Gong");
    EXPECT_EQ(setting("Position", "SignalErreur"), "Bip");
}

TEST_F(ConfigFormOptions, OkDeletesTheKeysWhenThereIsNoSound) {
    loadSettings("[Position]\nSignalOk=Gong\nSignalErreur=Bip\nConfig=Travail\n");
    ConfigForm form(system);
    EXPECT_THAT(form.FichSonCb[0].entries(), IsEmpty());
    form.Cmd[0].click();
    EXPECT_EQ(settings(), "[Position]\nConfig=Travail\n");
}

TEST_F(ConfigFormOptions, TestButtonsPlayWhatIsSelected) {
    placeSounds({"Bip.wav", "Gong.wav"});
    ConfigForm form(system);
    form.FichSonCb[1].pick(1);
    form.Cmd[4].click();
    form.Cmd[5].click();
    EXPECT_THAT(memory.sounds().played(),
                ElementsAre(R"(C:\Coffrelune\Bip.wav)", R"(C:\Coffrelune\Gong.wav)"));
    EXPECT_TRUE(form.open());
}

TEST_F(ConfigFormOptions, TestButtonIsSilentWhenTheFileIsGone) {
    placeSounds({"Bip.wav"});
    ConfigForm form(system);
    disk().remove(R"(C:\Coffrelune\Bip.wav)");
    form.Cmd[4].click();
    EXPECT_THAT(memory.sounds().played(), IsEmpty());
}

TEST_F(ConfigFormOptions, TestButtonIsSilentWhenTheDeviceIsGone) {
    placeSounds({"Bip.wav"});
    ConfigForm form(system);
    memory.sounds().setDeviceCount(0);
    form.Cmd[4].click();
    EXPECT_THAT(memory.sounds().played(), IsEmpty());
}

TEST_F(ConfigFormOptions, WithoutAWaveDeviceEverythingAboutSoundsIsDisabled) {
    memory.sounds().setDeviceCount(0);
    const ConfigForm form(system);
    EXPECT_FALSE(form.Opt[3].enabled());
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_FALSE(form.Cmd.at(4 + i).enabled());
        EXPECT_FALSE(form.FichSonCb.at(i).enabled());
        EXPECT_FALSE(form.FichSonLbl.at(i).enabled());
    }
    EXPECT_TRUE(form.Opt[2].enabled());
    EXPECT_TRUE(form.Cmd[3].enabled());
}

TEST_F(ConfigFormOptions, WithAWaveDeviceEverythingAboutSoundsIsEnabled) {
    const ConfigForm form(system);
    EXPECT_TRUE(form.Opt[3].enabled());
    EXPECT_TRUE(form.Cmd[4].enabled());
    EXPECT_TRUE(form.FichSonCb[1].enabled());
    EXPECT_TRUE(form.FichSonLbl[1].enabled());
}

}  // namespace
}  // namespace coffrelune
