#include "views/terminal/redirected_streams.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/mman.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace coffrelune {
namespace {

void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

std::string readFile(int file) {
    std::string text;
    std::array<char, 4096> buffer{};
    lseek(file, 0, SEEK_SET);
    for (ssize_t count = 0; (count = read(file, buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

RedirectedStreams::RedirectedStreams(const StreamLayout& layout) {
    std::fflush(nullptr);
    termios settings{};
    winsize size{};
    size.ws_col = layout.columns;
    require(openpty(&master_, &slave_, nullptr, nullptr, &size) == 0, "openpty");
    require(tcgetattr(slave_, &settings) == 0, "tcgetattr");
    // What the program writes arrives as it is, what the user types is not echoed.
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    require(tcsetattr(slave_, TCSANOW, &settings) == 0, "tcsetattr");
    outputFile_ = memfd_create("output", MFD_CLOEXEC);
    errorsFile_ = memfd_create("errors", MFD_CLOEXEC);
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    for (int stream = 0; stream < 3; ++stream) {
        saved_.at(static_cast<std::size_t>(stream)) = fcntl(stream, F_DUPFD_CLOEXEC, 3);
    }
    dup2(layout.input ? slave_ : nothing, STDIN_FILENO);
    dup2(layout.output ? slave_ : outputFile_, STDOUT_FILENO);
    dup2(layout.errors ? slave_ : errorsFile_, STDERR_FILENO);
    close(nothing);
}

void RedirectedStreams::type(const std::string& text) {
    require(write(master_, text.data(), text.size()) == static_cast<ssize_t>(text.size()), "type");
}

bool RedirectedStreams::waitFor(const std::string& text) {
    constexpr int longest = 120'000;  // milliseconds
    std::array<char, 4096> buffer{};
    while (terminalText_.find(text) == std::string::npos) {
        pollfd waiting{master_, POLLIN, 0};
        if (poll(&waiting, 1, longest) != 1) return false;
        const ssize_t count = read(master_, buffer.data(), buffer.size());
        if (count <= 0) return false;
        terminalText_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return true;
}

void RedirectedStreams::finish() {
    if (master_ < 0) return;
    for (int stream = 0; stream < 3; ++stream) {
        const int own = saved_.at(static_cast<std::size_t>(stream));
        dup2(own, stream);
        close(own);
    }
    close(slave_);
    // With the last descriptor of the other end closed, reading ends after what is there.
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(master_, buffer.data(), buffer.size())) > 0;) {
        terminalText_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    close(master_);
    master_ = -1;
    outputText_ = readFile(outputFile_);
    errorsText_ = readFile(errorsFile_);
    close(outputFile_);
    close(errorsFile_);
}

}  // namespace coffrelune
