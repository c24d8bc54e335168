#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/memory/memory_copy.h"
#include "platform/memory/memory_disk.h"
#include "platform/memory/memory_hold.h"
#include "platform/memory/memory_services.h"

namespace coffrelune {

/// Where a copy stands when the hook is called.
struct CopyMoment {
    std::string source;
    std::string destination;
    std::uint64_t transferred = 0;  // bytes so far
    std::uint64_t size = 0;         // of the whole file
};

/// The file service on a MemoryDisk. Records every call, moves the clock by what copying costs.
class MemoryFiles final : public FileService {
  public:
    /// Both outlive this.
    MemoryFiles(MemoryDisk& disk, MemoryClock& clock) : disk_(disk), clock_(clock) {}

    // ---- what a test reads -------------------------------------------------------------------
    /// Every call, in order: its name and its paths as given, with one blank between
    /// ("copyFile C:\a F:\b", "openDirectory C:\Docs", "setAttributes F:\b 128"). A look-up in an
    /// open directory is "find C:\Docs\a.txt"; the single entries of a listing are not recorded.
    /// A held tree gives "claim C:\Docs" and "flush C:\Docs"; a file written to be safe with the
    /// next flush is "writeWhole C:\a nextFlush".
    const std::vector<std::string>& calls() const { return calls_; }
    /// The calls of one name ("copyFile"), and those that change the disk.
    std::vector<std::string> calls(const std::string& name) const;
    std::vector<std::string> writes() const;
    void clearCalls() { calls_.clear(); }

    // ---- what a test sets --------------------------------------------------------------------
    /// Called in the middle of every copy, after each chunk and before the file has its final name.
    std::function<void(const CopyMoment&)> copyHook;

    /// Bytes between two notifications; 1 to 16 MiB.
    void setChunkSize(std::uint64_t bytes) { chunkSize_ = bytes; }

    /// How much the clock moves on: for each file, and while bytes are copied (0: at once).
    void setCopyCost(std::int64_t millisecondsPerFile, std::uint64_t bytesPerMillisecond);

    /// How many files of a batch wait for their names at most; 1, unless it is told otherwise: each
    /// file has its name after the next call.
    void setBatchSize(std::size_t files) { batchSize_ = files; }

    // ---- FileService -------------------------------------------------------------------------
    Status hold(const std::string& root, std::unique_ptr<HeldTree>& held) override;
    Status openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                         std::unique_ptr<Directory>& directory) override;
    Status lookUp(const std::string& path, LinkRule links, FileEntry& entry) override;
    Status identify(const std::string& path, FileId& id) override;
    std::string resolve(const std::string& path) override;
    Status createDirectory(const std::string& path, DirectoryAccess access) override;
    Status matchDirectory(const std::string& source, const std::string& target) override;
    Status removeDirectory(const std::string& path) override;
    Status copyFile(const std::string& source, const std::string& destination, LinkRule sourceLinks,
                    CopyObserver* observer) override;
    std::unique_ptr<CopyBatch> startBatch(const std::string& root, AfterFailure afterFailure,
                                          CopyEvents& events) override;
    std::unique_ptr<WalkAhead> startWalk() override { return std::make_unique<PlainWalk>(*this); }
    void abandonCopies() override { abandoned_ = true; }
    Status setAttributes(const std::string& path, std::uint32_t attributes) override;
    Status setTimes(const std::string& path, const FileTimes& times) override;
    Status removeFile(const std::string& path) override;
    Status removeLeftovers(const std::string& directory) override;
    Status ownFiles(const std::string& directory, std::vector<std::string>& names) override;
    Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) override;
    Status writeWhole(const std::string& path, const std::string& bytes,
                      Durability durability) override;

  private:
    friend class MemoryBatch;

    void record(const char* name, const std::string& path, const std::string& more = {});
    Status locate(const std::string& path, LinkRule links, MemoryPlace& place) const;
    bool leavesHold(const std::string& path, const MemoryPlace& place) const;
    Status existingDirectory(const std::string& path, LinkRule links, MemoryPlace& place) const;
    Status existing(const std::string& path, LinkRule links, MemoryPlace& place) const;
    Status changeable(const std::string& path, LinkRule links, MemoryPlace& place) const;
    Status prepareDestination(const std::string& path, LinkRule links, MemoryPlace& place) const;
    static Status checkReplaceable(const std::string& path, const MemoryPlace& place);
    static Status checkName(const std::string& path, const MemoryPlace& place);
    Status openSource(const MemoryCopy& copy, LinkRule links, MemoryPlace& source) const;
    Status begin(MemoryCopy& copy, LinkRule links, bool isNew) const;
    Status fill(MemoryCopy& copy, CopyObserver* observer);
    Status transfer(const MemoryCopy& copy, CopyObserver* observer);
    Status nextChunk(const MemoryCopy& copy, std::uint64_t bytes);
    void giveName(const MemoryCopy& copy);
    void drop(const MemoryCopy& copy);
    void spend(std::uint64_t bytes);

    MemoryDisk& disk_;
    MemoryClock& clock_;
    std::vector<std::string> calls_;
    MemoryHolds holds_;
    std::atomic<bool> abandoned_ = false;
    std::uint64_t chunkSize_ = std::uint64_t{16} << 20;
    std::size_t batchSize_ = 1;
    std::int64_t millisecondsPerFile_ = 0;
    std::uint64_t bytesPerMillisecond_ = 0;
    std::uint64_t unpaidBytes_ = 0;  // of a millisecond that is not full yet
};

}  // namespace coffrelune
