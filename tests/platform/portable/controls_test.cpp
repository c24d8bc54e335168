#include "platform/controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/long_lists.h"

namespace coffrelune {
namespace {

class CountingPeer final : public ControlPeer {
  public:
    void controlChanged(Control& control) override {
        ++count;
        last = &control;
    }

    int count = 0;
    Control* last = nullptr;
};

TEST(Control, TellsItsPeerOfEachChangeAndOnlyOfChanges) {
    CountingPeer peer;
    Label label("De: ");
    label.attach(&peer);
    label.setCaption("De: ");
    label.setVisible(true);
    label.setEnabled(true);
    label.setToolTip("");
    EXPECT_EQ(peer.count, 0);
    label.setCaption("De: C:\\Docs");
    label.setToolTip("Source");
    label.setVisible(false);
    label.setEnabled(false);
    EXPECT_EQ(peer.count, 4);
    EXPECT_EQ(peer.last, &label);
    EXPECT_EQ(label.caption(), "De: C:\\Docs");
    EXPECT_EQ(label.toolTip(), "Source");
    EXPECT_FALSE(label.visible());
    EXPECT_FALSE(label.enabled());
}

TEST(Control, WorksWithoutAPeer) {
    CountingPeer peer;
    Label label;
    label.attach(&peer);
    label.attach(nullptr);
    label.setCaption("x");
    EXPECT_EQ(label.caption(), "x");
    EXPECT_EQ(peer.count, 0);
}

TEST(Button, ClicksOnlyWhenEnabledAndVisible) {
    Button button("&Fermer");
    int clicks = 0;
    button.click();
    button.onClick = [&] { ++clicks; };
    button.click();
    EXPECT_EQ(clicks, 1);
    button.setEnabled(false);
    button.click();
    button.setEnabled(true);
    button.setVisible(false);
    button.click();
    EXPECT_EQ(clicks, 1);
}

TEST(CheckBox, ClickTogglesBeforeItRaisesTheEvent) {
    CountingPeer peer;
    CheckBox box;
    box.attach(&peer);
    std::vector<bool> seen;
    box.onClick = [&] { seen.push_back(box.checked()); };
    box.click();
    box.click();
    EXPECT_THAT(seen, testing::ElementsAre(true, false));
    EXPECT_EQ(peer.count, 2);
    box.setEnabled(false);
    box.click();
    EXPECT_FALSE(box.checked());
    EXPECT_EQ(seen.size(), 2U);
}

TEST(CheckBox, SettingItRaisesNoEvent) {
    CheckBox box;
    bool raised = false;
    box.onClick = [&] { raised = true; };
    box.setChecked(true);
    EXPECT_TRUE(box.checked());
    EXPECT_FALSE(raised);
}

TEST(Picture, TellsItsPeerOfAnotherImage) {
    CountingPeer peer;
    Picture picture;
    picture.attach(&peer);
    picture.setImage("erreur");
    picture.setImage("erreur");
    EXPECT_EQ(picture.image(), "erreur");
    EXPECT_EQ(peer.count, 1);
}

TEST(ProgressBar, KeepsItsValueBetweenZeroAndAHundred) {
    CountingPeer peer;
    ProgressBar bar;
    bar.attach(&peer);
    bar.setValue(-5);
    EXPECT_EQ(bar.value(), 0);
    EXPECT_EQ(peer.count, 0);
    bar.setValue(150);
    EXPECT_EQ(bar.value(), 100);
    bar.setIndeterminate(true);
    EXPECT_TRUE(bar.indeterminate());
    EXPECT_EQ(peer.count, 2);
}

TEST(TextLog, KeepsItsLinesAndItsWholeText) {
    CountingPeer peer;
    TextLog log;
    log.attach(&peer);
    log.append("first");
    log.append("second\r\nthird");
    log.append("");
    EXPECT_EQ(log.text(), "first\r\nsecond\r\nthird\r\n\r\n");
    ASSERT_EQ(log.lineCount(), 4U);
    EXPECT_EQ(log.line(0), "first");
    EXPECT_EQ(log.line(1), "second");
    EXPECT_EQ(log.line(2), "third");
    EXPECT_EQ(log.line(3), "");
    EXPECT_EQ(peer.count, 3);
}

TEST(TextLog, StartsAgainAfterClear) {
    TextLog log;
    log.append("first");
    log.clear();
    EXPECT_EQ(log.lineCount(), 0U);
    EXPECT_EQ(log.text(), "");
    log.append("again");
    EXPECT_EQ(log.line(0), "again");
    EXPECT_NE(log.generation(), TextLog().generation()) << "the same number of lines, but others";
}

TEST(TextLog, HoldsAMillionLines) {
    TextLog log;
    for (int i = 0; i < 1'000'000; ++i) log.append(std::to_string(i));
    ASSERT_EQ(log.lineCount(), 1'000'000U);
    EXPECT_EQ(log.line(0), "0");
    EXPECT_EQ(log.line(123'456), "123456");
    EXPECT_EQ(log.line(999'999), "999999");
}

TEST(Window, IsOpenUntilItsCloseBoxIsUsed) {
    Window window;
    EXPECT_TRUE(window.open());
    window.closeBox();
    EXPECT_FALSE(window.open());
}

}  // namespace
}  // namespace coffrelune
