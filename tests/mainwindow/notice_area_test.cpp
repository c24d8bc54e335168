#include "mainwindow/notice_area.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NoticeAreaTest : public testing::Test {
  protected:
    NoticeAreaTest() { memory.clock().set({2026, 11, 21, 8, 30, 5, 0}); }

    std::vector<std::string> shown() const {
        std::vector<std::string> lines;
        for (const Label& label : area.Lbl) {
            if (label.visible()) lines.push_back(label.caption());
        }
        return lines;
    }

    MemoryPlatform memory;
    NoticeArea area{memory.clock()};
};

TEST_F(NoticeAreaTest, IsNotThereWhenThereIsNothingToSay) {
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_FALSE(area.Img.visible());
    EXPECT_FALSE(area.Cmd.visible());
}

TEST_F(NoticeAreaTest, TellsWhenEachThingHappenedOnOneLine) {
    area.add("Sauvegarde interrompue !\n\nCe disque est protégé en écriture.\r\nRetirez-la.");
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   Sauvegarde interrompue ! Ce disque est "
                                     "protégé en écriture. Retirez-la."));
    EXPECT_TRUE(area.Img.visible());
    EXPECT_TRUE(area.Cmd.visible());
}

TEST_F(NoticeAreaTest, ShowsTheLastOnesAndCountsThoseBefore) {
    for (int i = 1; i <= 5; ++i) area.add(std::to_string(i));
    EXPECT_THAT(shown(), testing::SizeIs(5));
    EXPECT_EQ(shown().front(), "21/11/2026 08:30:05   1");
    area.add("6");
    EXPECT_THAT(shown(), ElementsAre("2 message(s) plus ancien(s)", "21/11/2026 08:30:05   3",
                                     "21/11/2026 08:30:05   4", "21/11/2026 08:30:05   5",
                                     "21/11/2026 08:30:05   6"));
    for (int i = 7; i <= 1000; ++i) area.add(std::to_string(i));
    EXPECT_EQ(shown().front(), "996 message(s) plus ancien(s)");
    EXPECT_EQ(shown().back(), "21/11/2026 08:30:05   1000");
}

TEST_F(NoticeAreaTest, GoesWhenTheUserHidesItAndComesBack) {
    for (int i = 1; i <= 9; ++i) area.add(std::to_string(i));
    int changes = 0;
    area.onChanged = [&changes] { ++changes; };
    area.Cmd.click();
    EXPECT_EQ(changes, 1);
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_FALSE(area.Cmd.visible());
    area.add("encore");
    EXPECT_EQ(changes, 2);
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   encore"));
}

TEST_F(NoticeAreaTest, ShowsControlCharactersOfANameEscaped) {
    area.add("Erreur: 5 - Fichier: C:\\a\tb");
    EXPECT_EQ(shown().front().find('\t'), std::string::npos);
}

TEST_F(NoticeAreaTest, OffersToConfirmTheSourceOnlyWhereThatHelps) {
    EXPECT_FALSE(area.ConfirmCmd.visible());
    EXPECT_EQ(area.ConfirmCmd.caption(), "Confirmer la source");
    EXPECT_EQ(area.ConfirmCmd.toolTip(),
              "La source est la bonne : la prochaine sauvegarde peut effacer de la copie les "
              "fichiers excédentaires");
    area.showKept({"Fichiers conservés : a"}, false);
    EXPECT_FALSE(area.ConfirmCmd.visible());
    area.showKept({"Fichiers conservés : b"}, true);
    EXPECT_TRUE(area.ConfirmCmd.visible());
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   Fichiers conservés : b"));
}

TEST_F(NoticeAreaTest, WhatAConfirmationAnswersGoesAndTheRestStays) {
    int confirmed = 0;
    area.onConfirm = [&confirmed] { ++confirmed; };
    area.add("autre chose");
    area.showKept({"a", "b"}, true);
    area.ConfirmCmd.click();
    EXPECT_EQ(confirmed, 1);
    EXPECT_FALSE(area.ConfirmCmd.visible());
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   autre chose",
                                     "21/11/2026 08:30:05   La source est confirmée pour la "
                                     "prochaine sauvegarde."));
    area.showKept({}, false);
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   autre chose"));
}

TEST_F(NoticeAreaTest, HidingTheReasonsHidesTheOfferToo) {
    area.showKept({"a"}, true);
    area.Cmd.click();
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_FALSE(area.ConfirmCmd.visible());
}

TEST_F(NoticeAreaTest, ManyReasonsAreCountedLikeOtherMessages) {
    area.showKept({"1", "2", "3", "4", "5", "6"}, true);
    EXPECT_EQ(shown().front(), "2 message(s) plus ancien(s)");
    EXPECT_TRUE(area.ConfirmCmd.visible());
}

TEST_F(NoticeAreaTest, OffersToAcceptRoundedDatesBesideTheRest) {
    int accepted = 0;
    area.onAcceptDates = [&accepted] { ++accepted; };
    EXPECT_FALSE(area.DatesCmd.visible());
    EXPECT_EQ(area.DatesCmd.caption(), "Accepter les dates arrondies");
    area.showKept({"a"}, true);
    area.showDates({"b"}, true);
    EXPECT_TRUE(area.DatesCmd.visible());
    EXPECT_TRUE(area.ConfirmCmd.visible());
    area.DatesCmd.click();
    EXPECT_EQ(accepted, 1);
    EXPECT_FALSE(area.DatesCmd.visible());
    EXPECT_TRUE(area.ConfirmCmd.visible());
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   a",
                                     "21/11/2026 08:30:05   Les dates arrondies sont acceptées : "
                                     "les prochaines sauvegardes ne copient que les fichiers "
                                     "modifiés."));
    area.showDates({}, false);
    EXPECT_THAT(shown(), ElementsAre("21/11/2026 08:30:05   a"));
}

}  // namespace
}  // namespace coffrelune
