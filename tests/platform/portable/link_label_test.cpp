#include <gtest/gtest.h>

#include "platform/commands.h"

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

}  // namespace
}  // namespace coffrelune
