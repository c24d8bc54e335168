#include "platform/commands.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

class CountingPeer final : public ControlPeer {
  public:
    void controlChanged(Control&) override { ++changes; }
    int changes = 0;
};

TEST(LinkLabel, OpensForAClickAndADropUnlessDisabled) {
    LinkLabel link("Site");
    int opened = 0;
    link.onOpen = [&] { ++opened; };
    link.click();
    link.drop();
    EXPECT_EQ(opened, 2);
    link.setEnabled(false);
    link.click();
    EXPECT_EQ(opened, 2);
}

TEST(LinkLabel, TellsItsPeerWhenThePointerComesAndGoes) {
    CountingPeer peer;
    LinkLabel link("Site");
    link.attach(&peer);
    link.hover(true);
    link.hover(true);
    link.hover(false);
    EXPECT_EQ(peer.changes, 2);
}

/// Shows what a narrow window has room for, each time it is told of a change.
class NarrowPeer final : public ControlPeer {
  public:
    void controlChanged(Control& control) override {
        ++count;
        auto& label = dynamic_cast<PathLabel&>(control);
        label.show(label.path().substr(0, 3), label.path());
    }

    int count = 0;
};

TEST(PathLabel, ShowsSomethingElseThanThePathThatItHolds) {
    PathLabel label;
    label.setPath(R"(C:\Docs)");
    label.show(R"(...\Docs)", R"(C:\Docs)");
    EXPECT_EQ(label.path(), R"(C:\Docs)");
    EXPECT_EQ(label.caption(), R"(...\Docs)");
    EXPECT_EQ(label.toolTip(), R"(C:\Docs)");
}

TEST(PathLabel, TellsOfCaptionAndToolTipOnce) {
    CountingPeer peer;
    PathLabel label;
    label.attach(&peer);
    label.show("a", "b");
    EXPECT_EQ(peer.changes, 1);
    label.show("a", "b");
    EXPECT_EQ(peer.changes, 1) << "nothing has changed";
    label.show("a", "");
    label.show("c", "");
    EXPECT_EQ(peer.changes, 3);
}

TEST(PathLabel, LetsItsPeerShowWhileItIsToldOfAChange) {
    NarrowPeer peer;
    PathLabel label;
    label.attach(&peer);
    label.setPath(R"(C:\Docs)");
    EXPECT_EQ(label.caption(), R"(C:\)");
    EXPECT_EQ(label.toolTip(), R"(C:\Docs)");
    EXPECT_EQ(peer.count, 2) << "the path, and what is shown of it";
    label.setPath(R"(F:\Save)");
    EXPECT_EQ(label.caption(), R"(F:\)");
    EXPECT_EQ(label.path(), R"(F:\Save)");
}

}  // namespace
}  // namespace coffrelune
