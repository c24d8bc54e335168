#include "platform/posix/desktop/programs.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include "platform/posix/interrupted.h"
#include "platform/posix/native_path.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

bool mayRun(const std::string& native) {
    struct stat information {};
    return stat(native.c_str(), &information) == 0 && S_ISREG(information.st_mode) &&
           access(native.c_str(), X_OK) == 0;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// Takes a text apart character by character.
class WordSplitter {
  public:
    explicit WordSplitter(std::string_view text) : text_(text) {}

    std::vector<std::string> split() {
        while (at_ < text_.size()) step(text_[at_++]);
        endWord();
        return words_;
    }

  private:
    void step(char c) {
        if (isBlank(c)) {
            endWord();
        } else if (c == '\'' || c == '"') {
            begun_ = true;  // quotes around nothing are a word too
            quoted(c);
        } else {
            add(c == '\\' && at_ < text_.size() ? text_[at_++] : c);
        }
    }

    void quoted(char quote) {
        while (at_ < text_.size() && text_[at_] != quote) {
            const bool escapes =
                quote == '"' && text_[at_] == '\\' && at_ + 1 < text_.size() &&
                std::string_view("\"\\$`").find(text_[at_ + 1]) != std::string_view::npos;
            if (escapes) ++at_;
            add(text_[at_++]);
        }
        if (at_ < text_.size()) ++at_;
    }

    void add(char c) {
        begun_ = true;
        word_ += c;
    }

    void endWord() {
        if (begun_) words_.push_back(word_);
        begun_ = false;
        word_.clear();
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool begun_ = false;
    std::string word_;
    std::vector<std::string> words_;
};

/// The new process, on its way to being the program. Other threads may have held locks when it was
/// made, so only calls that are safe in a signal handler follow.
[[noreturn]] void becomeProgram(char* const* arguments, int input = -1, int output = -1,
                                int errors = -1) {
    struct sigaction byDefault {};
    byDefault.sa_handler = SIG_DFL;
    for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
        sigaction(number, &byDefault, nullptr);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int nothing = open("/dev/null", O_RDWR);
    if (nothing >= 0) dup2(input >= 0 ? input : nothing, STDIN_FILENO);
    if (output >= 0) dup2(output, STDOUT_FILENO);
    if (errors >= 0) dup2(errors, STDERR_FILENO);
    if (nothing > STDERR_FILENO) close(nothing);
    execv(arguments[0], arguments);
    _exit(127);
}

}  // namespace

std::string findProgram(std::string_view name, std::string_view searchPath) {
    if (name.empty() || name.find('/') != std::string_view::npos) return {};
    for (std::size_t start = 0; start < searchPath.size();) {
        const std::size_t end = std::min(searchPath.find(':', start), searchPath.size());
        const std::string directory(searchPath.substr(start, end - start));
        start = end + 1;
        if (!directory.starts_with('/')) continue;
        std::string candidate = joinNative(directory, name);
        if (mayRun(candidate)) return candidate;
    }
    return {};
}

bool isProgramFile(const std::string& native) {
    if (!mayRun(native)) return false;
    UniqueFd file;
    // A binary that may be run but not read is a program all the same.
    if (openPath(native, O_RDONLY | O_NONBLOCK, file) != 0) return true;
    char magic[4] = {};
    const ssize_t count = read(file.get(), magic, sizeof magic);
    const std::string_view start(magic, count > 0 ? static_cast<std::size_t>(count) : 0);
    return start ==
               "\x7F"
               "ELF" ||
           start.starts_with("#!");
}

std::vector<std::string> splitWords(std::string_view text) {
    return WordSplitter(text).split();
}

namespace {

/// As the kernel takes them; they point into `texts`.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int exitStatusOf(pid_t process) {
    int status = 0;
    pid_t waited = -1;
    do {
        waited = waitpid(process, &status, 0);
    } while (waited < 0 && errno == EINTR);
    return waited == process && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// All that a file in memory holds.
std::string contentOf(const UniqueFd& file) {
    std::string text;
    std::array<char, 4096> buffer{};
    if (lseek(file.get(), 0, SEEK_SET) != 0) return text;
    for (;;) {
        const ssize_t count =
            uninterrupted([&] { return read(file.get(), buffer.data(), buffer.size()); });
        if (count <= 0) return text;
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

// Everything lies in memory, so that neither of the two waits for the other to read.
ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& input) {
    ProgramEnd end;
    if (arguments.empty() || arguments.front().empty()) return end;
    std::vector<std::string> texts = arguments;
    const std::vector<char*> pointers = pointersTo(texts);
    const UniqueFd given(memfd_create("input", MFD_CLOEXEC));
    const UniqueFd output(memfd_create("output", MFD_CLOEXEC));
    const UniqueFd errors(memfd_create("errors", MFD_CLOEXEC));
    if (!given.valid() || !output.valid() || !errors.valid() ||
        writeAll(given.get(), input.data(), input.size()) != 0 ||
        lseek(given.get(), 0, SEEK_SET) != 0) {
        return end;
    }
    const pid_t program = fork();
    if (program == 0) becomeProgram(pointers.data(), given.get(), output.get(), errors.get());
    if (program < 0) return end;
    end.status = exitStatusOf(program);
    end.output = contentOf(output);
    end.errors = contentOf(errors);
    return end;
}

void startProgram(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return;
    std::vector<std::string> texts = arguments;
    const std::vector<char*> pointers = pointersTo(texts);

    // The one in between ends at once, so that the program belongs to the system, which collects
    // it, and not to this process.
    const pid_t between = fork();
    if (between == 0) {
        setsid();
        const pid_t program = fork();
        if (program == 0) becomeProgram(pointers.data());
        _exit(0);
    }
    while (between > 0 && waitpid(between, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace coffrelune
