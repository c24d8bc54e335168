#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/file_copier.h"
#include "engine/progress.h"

namespace coffrelune {

/// The copies of one line that wait for the disk. A file counts as copied when it bears its name
/// and is safe, not before.
class CopyQueue final : private CopyEvents {
  public:
    CopyQueue(RunState& run, CopyErrors& errors, Progress& progress, FileCopier& copier);

    /// One file and where it is copied; the directories end with a backslash.
    struct Wish {
        const FileEntry& entry;
        Directory& source;
        Directory& target;
        const std::string& sourceDirectory;
        const std::string& targetDirectory;
        bool found = false;  // something bears its name there
    };

    /// For a line, by its index, that writes the tree `root`.
    void open(int line, const std::string& root);
    bool isOpen() const { return batch_ != nullptr; }

    /// Copies one file as the options say. After a first failure the destination is made writable
    /// and the copy tried once more; after a second one it is counted as an error. False when the
    /// user gave it up.
    bool add(const Wish& wish);
    /// How many have been added, those that failed included.
    std::uint64_t added() const { return added_; }

    /// Gives the directory `target` the rights of `source`, once it has no copy that waits.
    void matchDirectory(const std::string& source, const std::string& target);

    /// Everything that was added bears its name, or is counted as failed, when this returns.
    void settle();
    /// What has become of the times of the line's files.
    KeptTimes close();

  private:
    struct Waiting {
        std::uint64_t ticket = 0;
        std::shared_ptr<const std::string> directory;  // of the original, with its backslash
        std::string name;
        std::uint64_t size = 0;
        bool replaces = false;
        std::vector<std::pair<std::string, std::string>> matches;  // due after this one
    };

    Status copyOnce(const Wish& wish, const std::string& source, const std::string& target,
                    std::uint64_t& ticket);
    void explain(const std::string& target, const std::string& directory);
    void committed(std::uint64_t ticket, const Status& status) override;
    void waiting() override { run_.display.runPendingEvents(); }

    RunState& run_;
    FileService& files_;
    CopyErrors& errors_;
    Progress& progress_;
    FileCopier& copier_;
    int line_ = 0;
    std::string root_;
    std::deque<Waiting> waiting_;
    std::shared_ptr<const std::string> directory_;  // of the last one: thousands may share it
    std::uint64_t added_ = 0;
    std::set<std::string> explained_;  // directories that are locked
    std::unique_ptr<CopyBatch> batch_;
};

}  // namespace coffrelune
