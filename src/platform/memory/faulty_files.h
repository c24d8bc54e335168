#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_service.h"

namespace coffrelune {

/// Forwards to another file service and fails the calls that a test chooses; a failed call is not
/// forwarded. Counts each call that can fail: every function of FileService except resolve and
/// abandonCopies, of an open directory "next" (the listing breaks off) and "find" (lookUp tells
/// that there is no such entry, and status() that this is not to be trusted), of a held tree
/// "claim", "flush" and "measureTimes", and of a batch "copyFile" (a file is added), "commit"
/// (counted when it is added; it is told as failed in its turn) and "finish".
class FaultyFiles final : public FileService {
  public:
    static constexpr int always = -1;

    /// `inner` outlives this.
    explicit FaultyFiles(FileService& inner) : inner_(inner) {}

    /// Fails the call with this number, counted from 1 since the construction or restart().
    void failCall(std::uint64_t number, std::uint32_t code);

    /// Fails calls by name ("copyFile", "next") and path, exactly as the caller spells it; an empty
    /// name or path means any. Of copyFile and matchDirectory either path counts; of "next" that of
    /// the directory, of "find" that of the entry, of "claim" and "flush" that of the hold.
    /// `times`: how many of them, the first ones.
    void fail(const std::string& name, const std::string& path, std::uint32_t code,
              int times = always);

    /// Forgets the chosen failures and counts from 0 again.
    void restart();

    std::uint64_t callCount() const { return calls_.size(); }
    /// The counted calls ("copyFile C:\a F:\b"), and how many of them failed by choice.
    const std::vector<std::string>& calls() const { return calls_; }
    std::uint64_t failureCount() const { return failureCount_; }

    Status hold(const std::string& root, std::unique_ptr<HeldTree>& held) override;
    Status openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                         std::unique_ptr<Directory>& directory) override;
    Status lookUp(const std::string& path, LinkRule links, FileEntry& entry) override;
    Status identify(const std::string& path, FileId& id) override;
    std::string resolve(const std::string& path) override { return inner_.resolve(path); }
    Status createDirectory(const std::string& path, DirectoryAccess access) override;
    Status matchDirectory(const std::string& source, const std::string& target) override;
    Status removeDirectory(const std::string& path) override;
    Status copyFile(const std::string& source, const std::string& destination, LinkRule sourceLinks,
                    CopyObserver* observer) override;
    std::unique_ptr<CopyBatch> startBatch(const std::string& root, AfterFailure afterFailure,
                                          CopyEvents& events) override;
    std::unique_ptr<WalkAhead> startWalk() override { return std::make_unique<PlainWalk>(*this); }
    void abandonCopies() override { inner_.abandonCopies(); }
    Status setAttributes(const std::string& path, std::uint32_t attributes) override;
    Status setTimes(const std::string& path, const FileTimes& times) override;
    Status removeFile(const std::string& path) override;
    Status removeLeftovers(const std::string& directory) override;
    Status ownFiles(const std::string& directory, std::vector<std::string>& names) override;
    Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) override;
    Status writeWhole(const std::string& path, const std::string& bytes,
                      Durability durability) override;

  private:
    class FaultyDirectory;
    class FaultyTree;
    class FaultyBatch;

    struct Rule {
        std::uint64_t number;  // 0: by name and path
        std::string name;
        std::string path;
        std::uint32_t code;
        int times;
    };

    /// Counts the call; success when it is to be forwarded.
    Status enter(const char* name, const std::string& path, const std::string& second = {});

    FileService& inner_;
    std::vector<Rule> rules_;
    std::vector<std::string> calls_;
    std::uint64_t failureCount_ = 0;
};

}  // namespace coffrelune
