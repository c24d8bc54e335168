#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/characters.h"
#include "platform/status.h"

namespace coffrelune {

/// The logical drives and what the user calls a path.
class DriveService {
  public:
    virtual ~DriveService() = default;

    /// Roots of the drives present now ("C:\"), in the order of their letters. Asks the system
    /// afresh, so that a medium put in or taken out since the last call counts.
    virtual std::vector<std::string> roots() = 0;

    /// The system's own directory, which no walk enters; empty when there is no such thing.
    virtual std::string windowsDirectory() = 0;

    /// Turns what a person typed, dropped or chose into the core's form, once, where it enters. On
    /// Linux "/media/cle/Photos" gives "F:\Photos" when that volume is F:, else "C:\media\...".
    /// A text that already has the core's form comes back in its plain spelling (names.h).
    virtual std::string fromNative(const std::string& typed) = 0;

    /// The same of a text that entered through a window. Nobody stands in a directory there: what
    /// is neither in the core's form nor an absolute path comes back exactly as it is. On Linux "~"
    /// and "~/x" are in the home directory.
    virtual std::string fromWindow(const std::string& entered) = 0;
};

/// A local calendar time. month 1 to 12, day 1 to 31.
struct LocalTime {
    int year = 1601;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;

    bool operator==(const LocalTime&) const = default;
};

class Clock {
  public:
    virtual ~Clock() = default;

    virtual LocalTime now() = 0;

    /// The local time of a file, given in units of 100 ns since 1601-01-01 UTC.
    virtual LocalTime localTime(std::uint64_t fileTime) = 0;

    /// Milliseconds of a clock that is never set back; only differences mean anything.
    virtual std::int64_t monotonicMilliseconds() = 0;
};

/// How the user's system writes numbers.
class Locale {
  public:
    virtual ~Locale() = default;
    /// Never empty; ASCII, so that every code page holds it.
    virtual std::string decimalSeparator() const = 0;
};

class SoundService {
  public:
    virtual ~SoundService() = default;
    virtual int deviceCount() = 0;
    /// Plays a sound file asynchronously; silent when it cannot.
    virtual void play(const std::string& path) = 0;
};

/// Refuses a second process on the same settings file.
class InstanceGuard {
  public:
    virtual ~InstanceGuard() = default;

    /// Claims the directory of the settings file until the process ends. False when another process
    /// holds it. A system that cannot lock there lets the program run.
    virtual bool claim(const std::string& directory) = 0;
};

enum class MessageIcon { information, exclamation, critical, question };
enum class MessageButtons { ok, okCancel, yesNo };
enum class Answer { ok, cancel, yes, no };

struct MessageBoxText {
    std::string text;  // lines joined with LF or CR LF
    std::string title;
    MessageIcon icon = MessageIcon::information;
    MessageButtons buttons = MessageButtons::ok;
    /// What is asked about overwrites, deletes or resets: who presses Enter without reading
    /// refuses.
    bool harmful = false;
};

class Window;

/// The window system: a desktop, a terminal, or a test.
class WindowService {
  public:
    virtual ~WindowService() = default;

    /// Shows a window, raises its activation and returns when it has closed.
    virtual void showModal(Window& window) = 0;

    /// Lets what the user did meanwhile take effect. May be called for every file: cheap unless it
    /// is time (about every 15 ms). May set flags and call window code, never starts an operation.
    virtual void runPendingEvents() = 0;

    virtual Answer showMessage(const MessageBoxText& message) = 0;

    /// The pointer says that the program is busy. Nothing where there is no pointer.
    virtual void showWaiting(bool /*waiting*/) {}

    /// Lets the user choose a directory (with `includeFiles` also a file), starting at `start`. The
    /// path in the core's form; empty when cancelled, and where there is nothing to choose with.
    virtual std::string chooseFolder(bool /*includeFiles*/, const std::string& /*prompt*/,
                                     const std::string& /*start*/) {
        return {};
    }

    /// Lets the user choose a program file. `filter`: "name|pattern" pairs joined with "|".
    virtual std::string chooseFile(const std::string& /*title*/, const std::string& /*filter*/) {
        return {};
    }

    /// Lets the user choose where a file is to be written; `name` is proposed. The path in the
    /// core's form; empty when cancelled. The user has agreed to the end of what is there.
    virtual std::string chooseNewFile(const std::string& /*title*/, const std::string& /*name*/) {
        return {};
    }

    /// Puts a text where other programs can paste it from.
    virtual void copyText(const std::string& /*text*/) {}

    /// A line that must not get lost though nobody is asked anything: stderr in a terminal.
    virtual void notice(const std::string& text) = 0;
};

}  // namespace coffrelune
