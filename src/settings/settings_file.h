#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "settings/settings_text.h"

namespace coffrelune {

/// The settings file on disk: reads it when it has changed, writes it whole and atomically. A file
/// that cannot be read or understood is never written over: reads then give nothing and writes fail
/// with the Status that `status()` tells (13 when it is no text, 223 when it is larger than 16
/// MiB). An empty path stands for no file at all: every read gives nothing, and what is written is
/// forgotten.
class SettingsFile {
  public:
    /// What a program that reads through a buffer of 1024 characters sees; ours keeps to it, so
    /// that both find the same.
    static constexpr std::size_t longestValue = 1023;

    /// Both services must outlive this. The file is first looked at when something is asked.
    SettingsFile(FileService& files, const AnsiCodec& ansi, std::string path);

    const std::string& path() const { return path_; }

    /// Success, also for a file that does not exist yet; otherwise why it cannot be used.
    Status status();

    /// Value of a key without surrounding quotes, cut to `longestValue` characters; "" when absent.
    std::string read(const std::string& section, const std::string& key);
    /// What is on the disk already is not written again. 87 for a key that a line cannot hold.
    Status write(const std::string& section, const std::string& key, const std::string& value);
    Status deleteKey(const std::string& section, const std::string& key);
    Status deleteSection(const std::string& section);
    /// 87 when there is a section of the other name already.
    Status renameSection(const std::string& from, const std::string& to);
    Status copySection(const std::string& from, const std::string& to,
                       const std::function<bool(const std::string& key)>& leavesOut);
    std::vector<std::string> keys(const std::string& section);
    /// Section names in file order, as they are spelled there.
    std::vector<std::string> sections();
    bool hasSection(const std::string& section);

  private:
    void refresh();
    void load();
    Status finish(SettingsText::Edit edit);

    FileService& files_;
    std::string path_;
    SettingsText text_;
    Status status_;
    bool loaded_ = false;
    FileEntry stamp_;  // of the file when it was read last
};

}  // namespace coffrelune
