#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/long_lists.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class CountingPeer final : public ControlPeer {
  public:
    void controlChanged(Control&) override { ++changes; }
    int changes = 0;
};

class ReportListTest : public testing::Test {
  protected:
    ReportListTest() {
        list.addRow({"disque", {"C:"}});
        list.addRow({"cle", {"D:"}});
        list.addRow({"disque", {"E:"}});
        list.attach(&peer);
        list.onPick = [this] { ++picks; };
        list.onDoubleClick = [this] { ++doubleClicks; };
    }
    CountingPeer peer;
    ReportList list;
    int picks = 0;
    int doubleClicks = 0;
};

TEST_F(ReportListTest, KeepsEachPictureOnce) {
    list.addRow({"", {"F:"}});
    EXPECT_THAT(list.images(), ElementsAre("disque", "cle"));
    EXPECT_EQ(peer.changes, 1);
}

TEST_F(ReportListTest, PickSelectsARowOrNone) {
    EXPECT_EQ(list.selection(), -1);
    list.pick(2);
    EXPECT_EQ(list.selection(), 2);
    list.pick(-1);
    EXPECT_EQ(list.selection(), -1);
    EXPECT_EQ(picks, 2);
    EXPECT_EQ(peer.changes, 2);
}

TEST_F(ReportListTest, RowThatDoesNotExistIsNotPicked) {
    list.pick(3);
    EXPECT_EQ(list.selection(), -1);
    EXPECT_EQ(picks, 0);
}

TEST_F(ReportListTest, DoubleClickSelectsFirst) {
    list.onDoubleClick = [this] { EXPECT_EQ(list.selection(), 1); };
    list.doubleClick(1);
    EXPECT_EQ(picks, 1);
}

TEST_F(ReportListTest, DisabledListTakesNoClick) {
    list.setEnabled(false);
    list.doubleClick(1);
    EXPECT_EQ(list.selection(), -1);
    EXPECT_EQ(picks + doubleClicks, 0);
}

}  // namespace
}  // namespace coffrelune
