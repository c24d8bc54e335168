#include "platform/input_controls.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

struct Events {
    explicit Events(TextBox& box) {
        box.onLeave = [this] { ++left; };
    }

    int left = 0;
};

TEST(TextBox, TellsOnceThatTheFocusHasLeft) {
    TextBox box;
    Events events(box);
    box.leave();
    EXPECT_EQ(events.left, 0) << "it was never entered";
    box.enter();
    box.enter();
    EXPECT_TRUE(box.focused());
    box.leave();
    box.leave();
    EXPECT_EQ(events.left, 1);
}

TEST(TextBox, AFocusGivenByTheProgramIsLeftAsWell) {
    TextBox box;
    Events events(box);
    box.takeFocus();
    EXPECT_TRUE(box.focused());
    box.enter();  // the toolkit follows
    box.leave();
    EXPECT_EQ(events.left, 1);
}

}  // namespace
}  // namespace coffrelune
