#pragma once

#include <string>

namespace coffrelune {

/// A console of the test's own, which takes the streams of the process from the construction to the
/// destruction.
class OwnConsole {
  public:
    OwnConsole();
    ~OwnConsole();
    OwnConsole(const OwnConsole&) = delete;
    OwnConsole& operator=(const OwnConsole&) = delete;

    /// The first characters of a row of the screen, from 0, as UTF-8 without the blanks at its end.
    std::string row(int number) const;

    /// Presses the keys of a text; "\r" is Enter.
    void press(const std::wstring& keys);

    /// Presses Ctrl-C; its handlers run on a thread of their own. False when the system refuses.
    static bool interrupt();

    /// Does what the system does in a process whose console window is being closed; the handlers
    /// run on a thread of their own. False when the system refuses.
    static bool closeWindow();

  private:
    void* input_;
    void* output_;
    void* saved_[3];
};

}  // namespace coffrelune
