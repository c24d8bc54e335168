#pragma once

#include <array>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/services.h"

namespace coffrelune {

/// What a backup that nobody watched had to say: lines at the top of the main window that stay
/// until the user hides them. The last ones are shown; of those before, how many there were.
class NoticeArea {
  public:
    /// `clock` is not owned.
    explicit NoticeArea(Clock& clock);

    Picture Img;
    std::array<Label, 5> Lbl;  // from the oldest that is shown to the newest
    Button Cmd{"Masquer"};
    Button ConfirmCmd{"Confirmer la source"};  // there while the user may overrule what is shown
    Button DatesCmd{"Accepter les dates arrondies"};  // the same

    /// Called when the area has grown, shrunk or gone.
    std::function<void()> onChanged;
    /// The user says that the originals are the right ones.
    std::function<void()> onConfirm;
    /// The user accepts that volumes round the times of copies.
    std::function<void()> onAcceptDates;

    /// `text`: line ends become blanks.
    void add(const std::string& text);

    /// Why the last run kept files that it was to delete, in the place of what the run before said
    /// of that. `mayConfirm`: the user may know better.
    void showKept(const std::vector<std::string>& reasons, bool mayConfirm);

    /// Which volumes do not hold the times of files, in the same way.
    void showDates(const std::vector<std::string>& reasons, bool mayAccept);

  private:
    enum class Topic {
        lasting,
        lastRun,  // goes when the next one has ended, like the next
        dates,
    };
    struct Message {
        std::string text;
        Topic topic = Topic::lasting;
    };

    void push(const std::string& text, Topic topic);
    void withdraw(Topic topic);
    void confirm();
    void acceptDates();
    void show();
    void hide();

    Clock& clock_;
    std::deque<Message> messages_;
    std::size_t dropped_ = 0;
};

}  // namespace coffrelune
