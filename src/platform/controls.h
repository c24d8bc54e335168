#pragma once

#include <functional>
#include <string>
#include <vector>

namespace coffrelune {

class Control;

/// What shows a control. Told after every change; reads the new state from the control.
class ControlPeer {
  public:
    virtual ~ControlPeer() = default;
    virtual void controlChanged(Control& control) = 0;
    /// The control ends before its peer does, which must not touch it again.
    virtual void controlGone(Control& /*control*/) {}
};

/// State of one control of a window, free of any toolkit: the window's class sets it, a peer shows
/// it, a test reads it. The peer is not owned and may be absent.
class Control {
  public:
    Control() = default;
    explicit Control(std::string caption) : caption_(std::move(caption)) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() {
        if (peer_ != nullptr) peer_->controlGone(*this);
    }

    /// A peer that ends before the control is detached before, with null.
    void attach(ControlPeer* peer) { peer_ = peer; }
    const std::string& caption() const { return caption_; }
    const std::string& toolTip() const { return toolTip_; }
    /// What a screen reader says for the control where its caption does not tell it from others.
    const std::string& spokenName() const { return spokenName_; }
    bool visible() const { return visible_; }
    bool enabled() const { return enabled_; }

    void setCaption(std::string caption);
    void setToolTip(std::string toolTip);
    void setSpokenName(std::string name);
    void setVisible(bool visible);
    void setEnabled(bool enabled);

  protected:
    void changed();
    /// Both at once, told to the peer as one change.
    void setTexts(std::string caption, std::string toolTip);

  private:
    std::string caption_;
    std::string toolTip_;
    std::string spokenName_;
    bool visible_ = true;
    bool enabled_ = true;
    ControlPeer* peer_ = nullptr;
};

class Label : public Control {
  public:
    using Control::Control;
};

class Button : public Control {
  public:
    using Control::Control;

    /// The user presses the button; nothing happens while it is disabled or hidden.
    void click();

    std::function<void()> onClick;
};

class CheckBox : public Control {
  public:
    using Control::Control;

    bool checked() const { return checked_; }
    void setChecked(bool checked);

    /// The user toggles the box.
    void click();

    std::function<void()> onClick;

  private:
    bool checked_ = false;
};

/// A picture, named; the peer knows what it looks like.
class Picture : public Control {
  public:
    const std::string& image() const { return image_; }
    void setImage(std::string image);

  private:
    std::string image_;
};

class ProgressBar : public Control {
  public:
    int value() const { return value_; }  // 0 to 100
    bool indeterminate() const { return indeterminate_; }
    void setValue(int value);
    void setIndeterminate(bool indeterminate);

  private:
    int value_ = 0;
    bool indeterminate_ = false;
};

/// A window's behaviour. The window service raises the activation, and ends the modal show when
/// the window is no longer open.
class Window {
  public:
    Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window() = default;

    const std::string& caption() const { return caption_; }
    bool open() const { return open_; }

    /// The window has come to the front; raised at least once by the modal show.
    virtual void activated() {}

    /// The user used the close box.
    virtual void closeBox() { close(); }

    /// Buttons in reading order, for a layer that offers them as answers to a question.
    virtual std::vector<Button*> buttons() { return {}; }
    /// Labels in reading order, for the same.
    virtual std::vector<Label*> labels() { return {}; }
    /// What Enter and Escape press; null when they press nothing.
    virtual Button* defaultButton() { return nullptr; }
    virtual Button* cancelButton() { return nullptr; }

  protected:
    void setCaption(std::string caption) { caption_ = std::move(caption); }
    void close() { open_ = false; }

  private:
    std::string caption_;
    bool open_ = true;
};

}  // namespace coffrelune
