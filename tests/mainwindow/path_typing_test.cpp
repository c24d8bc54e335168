// A path typed in the place where it is shown.
#include "mainwindow/main_form_fixture.h"
#include "mainwindow/path_completion.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PathTypingTest : public MainFormTest {};

TEST_F(PathTypingTest, WhatIsTypedBecomesThePathAndIsStored) {
    start();
    row(0).LblS.edit("C:\\Docs");
    EXPECT_EQ(left(0), "C:\\Docs");
    EXPECT_EQ(stored("Source0"), "C:\\Docs");
}

TEST_F(PathTypingTest, ATextThatHasNotChangedStoresNothing) {
    startWithLine();
    const std::size_t before = writeCount();
    row(0).LblS.edit(left(0));
    EXPECT_EQ(writeCount(), before);
}

TEST_F(PathTypingTest, EmptyingAsksFirst) {
    startWithLine();
    user().answer(Answer::cancel);
    row(0).LblS.empty();
    EXPECT_THAT(lastMessage(),
                IsQuestion("Voulez-vous vider la source de la sauvegarde 1 ?", form->caption()));
    EXPECT_EQ(left(0), "C:\\Docs");
    user().answer(Answer::ok);
    row(0).LblD.edit("");
    EXPECT_THAT(lastMessage(), IsQuestion("Voulez-vous vider la destination de la sauvegarde 1 ?",
                                          form->caption()));
    EXPECT_EQ(right(0), "");
    EXPECT_EQ(stored("Destination0"), "");
    EXPECT_FALSE(row(0).ChkS.checked());
}

TEST_F(PathTypingTest, AnEmptyPathIsNotAskedAbout) {
    start();
    row(0).LblS.empty();
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(PathTypingTest, DirectoriesCompleteWhatIsTypedInItsOwnForm) {
    start();
    EXPECT_THAT(row(0).LblS.complete("C:\\do"), ElementsAre("C:\\Docs"));
    EXPECT_THAT(row(0).LblS.complete("C:\\Docs\\"), IsEmpty());
    EXPECT_THAT(row(0).LblS.complete("Docs"), IsEmpty());
    EXPECT_THAT(row(0).LblS.complete("Z:\\absent\\a"), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
