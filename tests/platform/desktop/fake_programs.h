#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {

/// Programs that write down how they were started, in a search path of their own.
class FakePrograms {
  public:
    FakePrograms() {
        disk_.makeDirectory("bin");
        disk_.makeDirectory("calls");
        watch_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
        inotify_add_watch(watch_, disk_.at("calls").c_str(), IN_MOVED_TO);
    }
    FakePrograms(const FakePrograms&) = delete;
    FakePrograms& operator=(const FakePrograms&) = delete;
    ~FakePrograms() { close(watch_); }

    std::string searchPath() const { return disk_.at("bin"); }

    /// Adds a program that records its arguments, one a line, under its name.
    std::string install(const std::string& name) const { return installAt("bin/" + name, name); }

    /// The same anywhere in the directory of the test.
    std::string installAt(const std::string& path, const std::string& name) const {
        const std::string record = disk_.at("calls/" + name);
        const std::string script =
            "#!/bin/sh\n"
            "{ for a in \"$@\"; do printf '%s\\n' \"$a\"; done; } > '" +
            record + ".new'\nread -r stat < /proc/$$/stat\nprintf '%s' \"$stat\" > '" + record +
            ".stat'\ncat > '" + record + ".input'\nmv '" + record + ".new' '" + record + "'\n";
        chmod(disk_.write(path, script).c_str(), 0755);
        return disk_.at(path);
    }

    /// The arguments of the program that was started under this name; waits for it to write them.
    std::vector<std::string> argumentsOf(const std::string& name) const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (access(disk_.at("calls/" + name).c_str(), F_OK) != 0) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            pollfd waiting{watch_, POLLIN, 0};
            if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0) {
                ADD_FAILURE() << name << " was not started";
                return {};
            }
            char events[4096];
            while (read(watch_, events, sizeof events) > 0) {
            }
        }
        std::vector<std::string> arguments;
        std::istringstream lines(disk_.read("calls/" + name));
        for (std::string line; std::getline(lines, line);) arguments.push_back(line);
        return arguments;
    }

    /// Names of what has been started and has written all it writes.
    std::vector<std::string> calls() const { return disk_.names("calls"); }

    /// What the program read from its standard input, and its line of /proc/PID/stat.
    std::string inputOf(const std::string& name) const {
        return disk_.read("calls/" + name + ".input");
    }
    std::string statOf(const std::string& name) const {
        return disk_.read("calls/" + name + ".stat");
    }

    const TemporaryDirectory& disk() const { return disk_; }

  private:
    TemporaryDirectory disk_;
    int watch_ = -1;
};

}  // namespace coffrelune
