#include "platform/memory/memory_windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SmallWindow : public Window {
  public:
    SmallWindow() {
        setCaption("Petite");
        ok.onClick = [this] { close(); };
    }
    void activated() override {
        ++activations;
        if (closesAtOnce) close();
    }

    Button ok{"OK"};
    int activations = 0;
    bool closesAtOnce = false;
};

class OtherWindow : public Window {};

TEST(MemoryWindows, ActivatesAWindowAndUsesItsSteps) {
    MemoryWindows windows;
    SmallWindow window;
    std::string order;
    windows.step([&](Window& open) {
        EXPECT_EQ(&open, &window);
        order += "first ";
    });
    windows.stepIn<SmallWindow>([&](SmallWindow& open) {
        order += "second";
        open.ok.click();
    });
    windows.showModal(window);
    EXPECT_EQ(order, "first second");
    EXPECT_EQ(window.activations, 1);
    EXPECT_FALSE(window.open());
    EXPECT_THAT(windows.shown(), ElementsAre("Petite"));
    EXPECT_THAT(windows.problems(), IsEmpty());
}

TEST(MemoryWindows, WindowThatClosesAtItsActivationNeedsNoStep) {
    MemoryWindows windows;
    SmallWindow window;
    window.closesAtOnce = true;
    windows.showModal(window);
    EXPECT_THAT(windows.problems(), IsEmpty());
}

TEST(MemoryWindows, WindowLeftOpenIsAProblemAndIsClosed) {
    MemoryWindows windows;
    SmallWindow window;
    windows.showModal(window);
    EXPECT_FALSE(window.open());
    EXPECT_THAT(windows.problems(), ElementsAre("window left open: Petite"));
}

TEST(MemoryWindows, StepInAnotherWindowIsAProblem) {
    MemoryWindows windows;
    SmallWindow window;
    windows.stepIn<OtherWindow>([](OtherWindow&) { FAIL() << "no such window"; });
    windows.step([](Window& open) { open.closeBox(); });
    windows.showModal(window);
    EXPECT_THAT(windows.problems(), ElementsAre("step for another window than 'Petite'"));
}

TEST(MemoryWindows, WindowOpenedWithinAStepTakesTheFollowingSteps) {
    MemoryWindows windows;
    SmallWindow outer;
    SmallWindow inner;
    windows.step([&](Window& open) {
        windows.showModal(inner);
        open.closeBox();
    });
    windows.step([&](Window& open) {
        EXPECT_EQ(&open, &inner);
        open.closeBox();
    });
    windows.showModal(outer);
    EXPECT_THAT(windows.problems(), IsEmpty());
}

TEST(MemoryWindows, AnswersMessagesInOrderAndKeepsThem) {
    MemoryWindows windows;
    windows.answer(Answer::yes);
    windows.answer(Answer::cancel);
    EXPECT_EQ(windows.showMessage({"un ?", "T", MessageIcon::question, MessageButtons::yesNo}),
              Answer::yes);
    EXPECT_EQ(windows.showMessage({"deux ?", "T", MessageIcon::question, MessageButtons::okCancel}),
              Answer::cancel);
    ASSERT_EQ(windows.messages().size(), 2U);
    EXPECT_EQ(windows.messages()[0].text, "un ?");
    EXPECT_EQ(windows.messages()[1].buttons, MessageButtons::okCancel);
    EXPECT_THAT(windows.problems(), IsEmpty());
}

TEST(MemoryWindows, UnexpectedMessageIsAProblemAndAnsweredHarmlessly) {
    MemoryWindows windows;
    MessageBoxText message{"Effacer ?", "T", MessageIcon::question, MessageButtons::yesNo};
    EXPECT_EQ(windows.showMessage(message), Answer::no);
    message.buttons = MessageButtons::okCancel;
    EXPECT_EQ(windows.showMessage(message), Answer::cancel);
    message.buttons = MessageButtons::ok;
    EXPECT_EQ(windows.showMessage(message), Answer::ok);
    EXPECT_THAT(windows.problems(),
                ElementsAre("message not expected: Effacer ?", "message not expected: Effacer ?",
                            "message not expected: Effacer ?"));
}

TEST(MemoryWindows, AnswerThatIsNotOfferedIsAProblem) {
    MemoryWindows windows;
    windows.answer(Answer::ok);
    EXPECT_EQ(windows.showMessage({"Effacer ?", "T", MessageIcon::question, MessageButtons::yesNo}),
              Answer::no);
    EXPECT_THAT(windows.problems(), ElementsAre("answer not offered by: Effacer ?"));
}

TEST(MemoryWindows, WhatWasPreparedAndNotUsedIsAProblem) {
    MemoryWindows windows;
    windows.answer(Answer::ok);
    windows.step([](Window&) {});
    EXPECT_THAT(windows.problems(), ElementsAre("1 steps left over", "1 answers left over"));
}

TEST(MemoryWindows, PendingEventsAreCountedAndNeverNested) {
    MemoryWindows windows;
    windows.runPendingEvents();
    int calls = 0;
    windows.onPendingEvents = [&] {
        ++calls;
        windows.runPendingEvents();
    };
    windows.runPendingEvents();
    windows.runPendingEvents();
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(windows.pendingEventsCount(), 5U);
}

TEST(MemoryWindows, KeepsNotices) {
    MemoryWindows windows;
    windows.notice("Journal illisible");
    EXPECT_THAT(windows.notices(), ElementsAre("Journal illisible"));
}

}  // namespace
}  // namespace coffrelune
