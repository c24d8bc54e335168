#pragma once

#include <functional>
#include <string>

#include "platform/controls.h"

namespace coffrelune {

/// A label that opens an address. The peer shows it in another colour while it is hovered.
class LinkLabel : public Label {
  public:
    using Label::Label;

    const std::string& address() const { return address_; }
    void setAddress(std::string address) { address_ = std::move(address); }
    bool hovered() const { return hovered_; }

    // The user's events: a click, something dropped on the label, the pointer over it or gone.
    void click();
    void drop();
    void hover(bool over);

    std::function<void()> onOpen;  // for a click and for a drop

  private:
    std::string address_;
    bool hovered_ = false;
};

}  // namespace coffrelune
