#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The hand of somebody else on the disk: nothing here passes through the services that are tested.
// Paths are the core's own, absolute; long ones work.
namespace coffrelune::disk {

/// True under Wine, which shows some things otherwise than Windows.
bool isWine();

/// A text of the environment, empty when there is none.
std::string environment(const std::string& name);

void makeDirectory(const std::string& path);
/// `lastWrite` in units of 100 ns since 1601; 0 for now.
void makeFile(const std::string& path, const std::string& content, std::uint64_t lastWrite = 0);
std::optional<std::string> content(const std::string& path);
/// Every name in a directory, sorted, without "." and "..".
std::vector<std::string> names(const std::string& directory);
/// The attribute word of the system; nothing when nothing bears the path.
std::optional<std::uint32_t> attributes(const std::string& path);
void setAttributes(const std::string& path, std::uint32_t attributes);

/// A link to `target`, a path relative to the link's directory that leads to a directory. False,
/// when this user or this system cannot make one.
bool makeDirectoryLink(const std::string& path, const std::string& target);
/// The same to a file. Wine has no such links that its programs could see.
bool makeFileLink(const std::string& path, const std::string& target);

/// Removes all that a directory holds, read-only or not; links, never what they lead to.
void empty(const std::string& directory);

/// Holds a file open without sharing it, as some programs do, until destroyed.
class Held {
  public:
    explicit Held(const std::string& path, bool shareReading = false);
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held();

  private:
    void* handle_;
};

/// A directory of one test below the system's temporary one, removed at its end.
class Temporary {
  public:
    Temporary();
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary();

    std::string at(const std::string& name = {}) const {
        return name.empty() ? path_ : path_ + "\\" + name;
    }

  private:
    std::string path_;
};

/// Starts this test program again with one test alone and a variable of the environment, and waits
/// for its end. The exit status; nothing when it did not start or took longer than a minute.
std::optional<std::uint32_t> runTestAgain(const std::string& test, const std::string& variable,
                                          const std::string& value);

}  // namespace coffrelune::disk
