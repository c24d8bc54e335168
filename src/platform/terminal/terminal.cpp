#include "platform/terminal/terminal.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/utf8.h"

namespace coffrelune {
namespace {

constexpr int input = STDIN_FILENO;
constexpr int output = STDOUT_FILENO;
constexpr int errors = STDERR_FILENO;

std::size_t columns() {
    winsize size{};
    if (ioctl(errors, TIOCGWINSZ, &size) != 0 || size.ws_col < 20) return 80;
    return size.ws_col;
}

// As many characters as fit on one line, so that the next text can be written over it.
std::string cutToWidth(const std::string& text, std::size_t width) {
    std::size_t position = 0;
    for (std::size_t shown = 0; position < text.size() && shown < width; ++shown) {
        (void)utf8::next(text, position);
    }
    return text.substr(0, position);
}

std::string withLineFeeds(const std::string& text) {
    std::string lines;
    for (const char c : text) {
        if (c != '\r') lines.push_back(c);
    }
    return lines + "\n";
}

}  // namespace

Terminal::Terminal(bool resultsOnly)
    : sayDescriptor_(resultsOnly ? errors : output),
      askDescriptor_(isatty(errors) != 0 ? errors : output),
      canAsk_(isatty(input) != 0 && isatty(askDescriptor_) != 0),
      showsProgress_(isatty(errors) != 0) {}

void Terminal::result(const std::string& line) {
    clearProgress();
    write(output, line + "\n");
}

void Terminal::say(const std::string& text) {
    clearProgress();
    write(sayDescriptor_, withLineFeeds(text));
}

void Terminal::warn(const std::string& text) {
    clearProgress();
    write(errors, withLineFeeds(text));
}

void Terminal::question(const std::string& text) {
    clearProgress();
    write(canAsk_ ? askDescriptor_ : sayDescriptor_, withLineFeeds(text));
}

bool Terminal::ask(const std::string& prompt, std::string& line,
                   const std::function<bool()>& givenUp) {
    constexpr int betweenLooks = 100;  // milliseconds
    clearProgress();
    write(askDescriptor_, prompt);
    line.clear();
    for (char c = 0; c != '\n';) {
        // A signal may come at any moment before the wait: only looking again finds it for certain.
        pollfd waiting{input, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, betweenLooks);
        if (givenUp && givenUp()) {
            write(askDescriptor_, "\n");
            return false;
        }
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        if (::read(input, &c, 1) != 1) return false;  // the end of the input
        if (c != '\n') line.push_back(c);
    }
    return true;
}

void Terminal::showProgress(const std::string& line) {
    if (!showsProgress_) return;
    write(errors, "\r" + cutToWidth(line, columns() - 1) + "\x1b[K");
    progressShown_ = true;
}

void Terminal::clearProgress() {
    if (!progressShown_) return;
    write(errors, "\r\x1b[K");
    progressShown_ = false;
}

void Terminal::write(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            // A reader that has seen enough is no failure.
            if (descriptor == output && errno != EPIPE) outputLost_ = true;
            return;
        }
        written += static_cast<std::size_t>(count);
    }
}

}  // namespace coffrelune
