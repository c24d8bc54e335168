#include "platform/input_controls.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

struct Events {
    explicit Events(TextBox& box) {
        box.onEnter = [this] { ++entered; };
        box.onLeave = [this] { ++left; };
    }

    int entered = 0;
    int left = 0;
};

TEST(TextBox, RaisesEachPassageOfTheFocusOnce) {
    TextBox box;
    Events events(box);
    box.leave();
    EXPECT_EQ(events.left, 0) << "it was never entered";
    box.enter();
    box.enter();
    EXPECT_EQ(events.entered, 1);
    box.leave();
    box.leave();
    EXPECT_EQ(events.left, 1);
}

TEST(TextBox, AFocusGivenByTheProgramIsNotEntered) {
    TextBox box;
    Events events(box);
    box.takeFocus();
    EXPECT_TRUE(box.focused());
    box.enter();
    EXPECT_EQ(events.entered, 0) << "the toolkit only follows";
    box.leave();
    EXPECT_EQ(events.left, 1);
}

}  // namespace
}  // namespace coffrelune
