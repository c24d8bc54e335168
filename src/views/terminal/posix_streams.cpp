#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

#include "views/terminal/streams.h"

namespace coffrelune::streams {
namespace {

int descriptor(Stream stream) {
    switch (stream) {
        case Stream::input:
            return STDIN_FILENO;
        case Stream::output:
            return STDOUT_FILENO;
        default:
            return STDERR_FILENO;
    }
}

}  // namespace

bool isTerminal(Stream stream) {
    return isatty(descriptor(stream)) != 0;
}

std::size_t columns() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col < 20) return 80;
    return size.ws_col;
}

WriteEnd write(Stream stream, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count =
            ::write(descriptor(stream), text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return errno == EPIPE ? WriteEnd::readerGone : WriteEnd::lost;
        written += static_cast<std::size_t>(count);
    }
    return WriteEnd::complete;
}

ReadEnd readLine(std::string& line, const std::function<bool()>& givenUp) {
    constexpr int betweenLooks = 100;  // milliseconds
    line.clear();
    for (char c = 0; c != '\n';) {
        // A signal may come at any moment before the wait: only looking again finds it for certain.
        pollfd waiting{STDIN_FILENO, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, betweenLooks);
        if (givenUp && givenUp()) return ReadEnd::givenUp;
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        if (::read(STDIN_FILENO, &c, 1) != 1) return ReadEnd::noMore;
        if (c != '\n') line.push_back(c);
    }
    return ReadEnd::line;
}

std::string overLine(const std::string& text, std::size_t /*width*/) {
    return "\r" + text + "\x1b[K";
}

}  // namespace coffrelune::streams
