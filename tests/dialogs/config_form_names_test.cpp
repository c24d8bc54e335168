// Names that the list of configurations cannot take at their word: the reserved one, and those that
// are cut or trimmed.
#include "dialogs/config_form.h"
#include "dialogs/dialog_fixture.h"
#include "dialogs/text_dialogs.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* title = "Configurations et options";

class ConfigFormNamesTest : public DialogTest {
  protected:
    void load(const std::string& sections) {
        loadSettings("[Position]\nRepertMax=4\nConfig=Travail\n" + sections +
                     "[Travail]\nSource0=C:\\B\n");
    }
    void add(ConfigForm& form, const std::string& name) {
        user().stepIn<ConfigNameForm>([name](ConfigNameForm& open) {
            open.Txt.type(name);
            open.Cmd[0].click();
        });
        form.Cmd[2].click();
    }
    /// "Effacer" for this entry, confirmed; then OK for `messages` refusals.
    void erase(ConfigForm& form, int entry, int messages = 0) {
        form.Liste.pick(entry);
        for (int i = 0; i <= messages; ++i) user().answer(Answer::ok);
        form.Cmd[3].click();
    }
    void placeErrorLists(const std::string& name) {
        for (const char* kind : {"S_", "R_", "C_"}) disk().file(errorList(kind, name), "x");
    }
    int errorLists(const std::string& name) {
        int count = 0;
        for (const char* kind : {"S_", "R_", "C_"}) {
            if (disk().exists(errorList(kind, name))) ++count;
        }
        return count;
    }
    static std::string errorList(const std::string& kind, const std::string& name) {
        return std::string(home) + "\\" + kind + name + ".err";
    }
};

// ---- the reserved name ---------------------------------------------------------------------

constexpr const char* reservedSections[] = {"POSITION", "Position (x)", "Position (x", " position",
                                            "position  "};

TEST_F(ConfigFormNamesTest, AReservedNameIsNotChosen) {
    for (const char* section : reservedSections) {
        load("[" + std::string(section) + "]\nSource0=C:\\A\n");
        system.configurationName = "Travail";
        ConfigForm form(system);
        // Of two sections that differ in case only, the list shows both.
        const auto& entries = form.Liste.entries();
        ASSERT_THAT(entries, ElementsAre(section, "Travail"));
        form.Liste.pick(0);
        form.Cmd[0].click();
        EXPECT_EQ(system.selectedConfiguration, "Travail") << section;
    }
}

TEST_F(ConfigFormNamesTest, AReservedNameIsNotErased) {
    for (const char* section : reservedSections) {
        load("[" + std::string(section) + "]\nSource0=C:\\A\n");
        system.configurationName = "Travail";
        placeErrorLists("Position");
        const std::string before = settings();
        ConfigForm form(system);
        erase(form, 0, 1);
        EXPECT_THAT(lastMessage(),
                    IsMessage("Impossible, nom réservé !", title, MessageIcon::information));
        EXPECT_EQ(settings(), before) << section;
        EXPECT_EQ(errorLists("Position"), 3);
        EXPECT_EQ(writeCount(), 0U);
        EXPECT_EQ(form.Liste.entries().size(), 2U);
    }
}

TEST_F(ConfigFormNamesTest, ANameThatWouldBecomeTheReservedOneIsNotAdded) {
    load("");
    ConfigForm form(system);
    for (const char* name : {"position (x", "Position ((", "POSITION (Travail)"}) {
        user().answer(Answer::ok);
        add(form, name);
        EXPECT_THAT(lastMessage(),
                    IsMessage("Impossible, nom réservé !", title, MessageIcon::information));
        EXPECT_THAT(form.Liste.entries(), ElementsAre("Travail"));
    }
    EXPECT_EQ(form.Liste.selection(), 0);
}

// ---- duplicates ----------------------------------------------------------------------------

TEST_F(ConfigFormNamesTest, ANameThatDiffersInCaseAloneIsADuplicate) {
    load("[PHOTOS]\nDescription=x\n");
    ConfigForm form(system);
    user().answer(Answer::ok);
    add(form, "photos");
    EXPECT_THAT(lastMessage(),
                IsMessage("Cette configuration existe déjà !", title, MessageIcon::information));
    EXPECT_EQ(form.Liste.entries().size(), 2U);
    add(form, "phot");
    EXPECT_EQ(form.Liste.entries().back(), "Phot") << "beginnings are compared as they are written";
}

// ---- erasing what is cut or trimmed ----------------------------------------------------------

TEST_F(ConfigFormNamesTest, ErasingNeverTakesAnotherConfigurationForTheOneShown) {
    load("[PHOTOS]\nSource0=C:\\A\n[Photos (2023)]\nSource0=C:\\B\n");
    placeErrorLists("Photos");
    const std::string before = settings();
    ConfigForm form(system);
    erase(form, 1, 1);
    EXPECT_THAT(lastMessage(), IsMessage("Impossible, ce nom est celui d'une autre configuration !",
                                         title, MessageIcon::information));
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(errorLists("Photos"), 3);
    EXPECT_EQ(form.Liste.entries().size(), 3U);
}

TEST_F(ConfigFormNamesTest, NorOneThatFoundNoRoomInTheList) {
    std::string sections = "[Photos (2023)]\nSource0=C:\\B\n";
    for (int i = 0; i < 4; ++i) {
        sections += "[" + std::string(300, static_cast<char>('a' + i)) + "]\nSource0=C:\\A\n";
    }
    load(sections + "[Photos]\nSource0=C:\\A\n");
    ConfigForm form(system);
    ASSERT_THAT(form.Liste.entries(), Not(testing::Contains("Photos")));
    erase(form, 0, 1);
    EXPECT_THAT(settings(), HasSubstr("[Photos]"));
}

TEST_F(ConfigFormNamesTest, NorTheTrimmedNameOfTheOneShown) {
    load("[ photos]\nSource0=C:\\A\n[Photos]\nSource0=C:\\B\n");
    const std::string before = settings();
    ConfigForm form(system);
    erase(form, 0, 1);
    EXPECT_EQ(settings(), before);
}

TEST_F(ConfigFormNamesTest, ErasingWorksOnTheCutNameWhenItBelongsToNobodyElse) {
    load("[Photos (2023)]\nSource0=C:\\B\n[ vacances ]\nSource0=C:\\C\n");
    placeErrorLists("Photos");
    placeErrorLists("vacances");
    ConfigForm form(system);
    erase(form, 0);
    erase(form, 1);
    EXPECT_EQ(errorLists("Photos"), 0);
    EXPECT_EQ(errorLists("vacances"), 0);
    EXPECT_EQ(user().messages().size(), 2U) << "the two questions";
}

TEST_F(ConfigFormNamesTest, ErasingAnEntryOfWhichNothingIsLeftDoesNothing) {
    load("[(x)]\nSource0=C:\\A\n");
    placeErrorLists("");
    ConfigForm form(system);
    erase(form, 0);
    EXPECT_THAT(settings(), HasSubstr("[(x)]"));
    EXPECT_EQ(errorLists(""), 3);
}

// ---- a name that was only tried ----------------------------------------------------------------

TEST_F(ConfigFormNamesTest, ANameChosenHereIsNoLongerOnlyTried) {
    load("");
    system.configurationName = system.askedConfiguration = "Vacances";
    ConfigForm cancelled(system);
    cancelled.Cmd[1].click();
    EXPECT_EQ(system.askedConfiguration, "Vacances");
    ConfigForm form(system);
    add(form, "vacances");
    form.Cmd[0].click();
    system.rememberConfiguration();
    EXPECT_EQ(setting("Position", "Config"), "Vacances");
}

}  // namespace
}  // namespace coffrelune
