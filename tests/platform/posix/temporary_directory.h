#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace coffrelune {

/// A directory of one test, removed at its end. Paths are native; an empty name is the directory.
class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::string path = (std::filesystem::temp_directory_path() / "posix-test-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) ADD_FAILURE() << "no temporary directory";
        chmod(path.c_str(), 0777);
        path_ = std::filesystem::canonical(path).string();
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string at(const std::string& name = {}) const {
        return name.empty() ? path_ : path_ + "/" + name;
    }

    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(at(name), std::ios::binary) << content;
        return at(name);
    }

    std::string read(const std::string& name) const {
        std::ifstream file(at(name), std::ios::binary);
        EXPECT_TRUE(file.is_open()) << name;
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string makeDirectory(const std::string& name) const {
        std::filesystem::create_directories(at(name));
        return at(name);
    }

    /// Names in a directory, sorted.
    std::vector<std::string> names(const std::string& name = {}) const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(at(name))) {
            found.push_back(entry.path().filename().string());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    struct stat stat(const std::string& name = {}) const {
        struct stat information {};
        EXPECT_EQ(lstat(at(name).c_str(), &information), 0) << name;
        return information;
    }

    void setTime(const std::string& name, std::int64_t seconds, long nanoseconds) const {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        EXPECT_EQ(utimensat(AT_FDCWD, at(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << name;
    }

  private:
    std::string path_;
};

/// Runs a part of a test without the privileges of root, which may read and write everything.
class WithoutPrivileges {
  public:
    WithoutPrivileges() : wasRoot_(geteuid() == 0) {
        if (!wasRoot_) return;
        EXPECT_EQ(seteuid(65534), 0);
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
    ~WithoutPrivileges() {
        if (!wasRoot_) return;
        EXPECT_EQ(seteuid(0), 0);
    }

  private:
    bool wasRoot_;
};

}  // namespace coffrelune
