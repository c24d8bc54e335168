#pragma once

#include <memory>
#include <string>
#include <vector>

#include "contract/contract_fixture.h"
#include "platform/at_first_chunk.h"

namespace coffrelune {

inline constexpr std::size_t largestChunk = std::size_t{16} << 20;
inline constexpr std::size_t severalChunks = largestChunk + (std::size_t{4} << 20) + 12345;

/// What a test adds beside the name of a file.
struct Wish {
    bool isNew = true;
    bool writable = false;
    bool allTimes = false;
    CopyObserver* observer = nullptr;
};

/// Copies from one directory into another in a batch, and holds every call to what is said of the
/// tickets.
class BatchContract : public Contract, protected CopyEvents {
  protected:
    void SetUp() override {
        Contract::SetUp();
        if (IsSkipped()) return;
        system().makeDirectory(at("de"));
        system().makeDirectory(at("vers"));
        readFrom(at("de\\"));
    }

    /// Where the originals are, with a backslash at its end.
    void readFrom(const std::string& directory) { sourceRoot_ = directory; }
    std::string from(const std::string& name) const { return sourceRoot_ + name; }
    std::string to(const std::string& name) const { return at("vers\\" + name); }
    void original(const std::string& name, const std::string& content = "new",
                  std::uint64_t lastWrite = newTime) {
        system().makeFile(from(name), content, lastWrite);
    }
    void old(const std::string& name, const std::string& content = "old") {
        make("vers\\" + name, content, oldTime);
    }

    void start(AfterFailure afterFailure = AfterFailure::goOn) {
        source_ = open(sourceRoot_);
        target_ = open(at("vers"));
        batch_ = files().startBatch(at("vers"), afterFailure, *this);
        last_ = 0;
    }
    CopyBatch& batch() { return *batch_; }
    Directory& target() { return *target_; }

    FileEntry seen(const std::string& name) {
        FileEntry found;
        EXPECT_TRUE(source_->lookUp(name, found)) << name;
        return found;
    }
    /// What add() gave: a new ticket when it is 0.
    std::uint32_t add(const std::string& name, const Wish& wish = {}) {
        return add(seen(name), wish, *target_, "vers");
    }
    std::uint32_t add(const FileEntry& entry, const Wish& wish, Directory& target,
                      const std::string& targetName) {
        const std::string sourcePath = from(entry.name);
        const std::string targetPath = at(targetName + "\\" + entry.name);
        std::uint64_t ticket = 0;
        const Status status = batch_->add({*source_, target, entry, sourcePath, targetPath,
                                           wish.isNew, wish.writable, wish.allTimes, wish.observer},
                                          ticket);
        if (!status.ok()) {
            EXPECT_EQ(ticket, 0U) << entry.name;
        } else {
            EXPECT_GT(ticket, last_) << entry.name;
            last_ = ticket;
            added_.push_back({ticket, entry.name, at(targetName)});
        }
        return status.code();
    }
    /// Every file that has a ticket is told by the end of it.
    void finish() {
        EXPECT_TRUE(batch_->finish().ok());
        EXPECT_EQ(told_.size(), added_.size());
    }
    void endBatch() {
        batch_.reset();
        target_.reset();
    }

    /// Name and code of each, as they were told.
    const std::vector<std::pair<std::string, std::uint32_t>>& told() const { return told_; }
    std::vector<std::string> namesInTarget() { return system().names(at("vers")); }

    void committed(std::uint64_t ticket, const Status& status) override {
        ASSERT_LT(told_.size(), added_.size()) << "told before the ticket was given";
        const Added& file = added_[told_.size()];
        EXPECT_EQ(ticket, file.ticket);
        told_.emplace_back(file.name, status.code());
        if (status.ok()) {
            EXPECT_THAT(system().names(file.directory), testing::Contains(file.name));
        }
    }
    void waiting() override {}

    std::unique_ptr<Directory> source_;

  private:
    struct Added {
        std::uint64_t ticket;
        std::string name;
        std::string directory;
    };

    std::string sourceRoot_;
    std::unique_ptr<Directory> target_;
    std::unique_ptr<CopyBatch> batch_;
    std::vector<Added> added_;
    std::vector<std::pair<std::string, std::uint32_t>> told_;
    std::uint64_t last_ = 0;
};

}  // namespace coffrelune
