#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/posix/copy_target.h"
#include "platform/posix/listing.h"
#include "platform/posix/place.h"
#include "platform/posix/rights.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// An open directory. Look-ups ask the system each time: that costs less than a microsecond, so
/// nothing is remembered and nothing can be out of date, but that an empty directory is empty.
class PosixDirectory final : public Directory {
  public:
    /// What all directories of one file service share; both numbers outlive them.
    struct Surroundings {
        std::shared_ptr<const std::set<dev_t>> pseudoDevices;
        std::atomic<int>& openCount;
        const std::atomic<std::uint64_t>& changes;  // how many times names have changed
    };

    /// `fd`: of the directory that `information` describes; with Wanted::nothing it may be an
    /// O_PATH descriptor.
    PosixDirectory(UniqueFd fd, const struct statx& information, Place place, Wanted wanted,
                   const Surroundings& around);
    PosixDirectory(const PosixDirectory&) = delete;
    PosixDirectory& operator=(const PosixDirectory&) = delete;
    ~PosixDirectory() override;

    bool next(FileEntry& entry) override;
    const Status& status() const override { return status_; }
    const FileEntry* self() const override { return self_ ? &*self_ : nullptr; }
    bool hasRightsOf(const Directory& original) const override;
    void expectCopy(bool expected) override { expectsCopy_ = expected; }
    std::vector<FileEntry> takeDirectories() override;
    bool lookUp(const std::string& name, FileEntry& entry) override;

    /// Reads entries before they are asked for, `most` of them.
    void readAhead(std::size_t most);
    /// Looks the next files of a listing up before they are asked for, in its order.
    void lookAhead(const PosixDirectory& listing);

    /// Whether a listing of it has about `count` more entries, as far as they were read.
    bool hasMore(std::size_t count) const;

    /// Nothing has been made in it, or was found there, since it was seen to be empty.
    bool isStillEmpty();

    /// The directory as one that files are copied into. 0 or an errno value.
    int shareTarget(std::shared_ptr<CopyTarget>& target);

    /// The file that was listed last, open for reading, and what it was then; false where it was
    /// not opened.
    bool takeOpened(const std::string& name, UniqueFd& fd, struct stat& information);

    /// What the last look-up found under `name`; false where that was another name. Told once, so
    /// that whoever comes back later asks the system.
    bool takeLooked(const std::string& name, struct statx& information);

    /// A descriptor of it for ...at() calls; `again` owns it where it has been closed meanwhile.
    /// 0 or an errno value.
    int reach(UniqueFd& again, int& fd) const;

  private:
    struct Known {
        std::size_t nameEnd = 0;  // in knownNames_, where it begins with the end of the one before
        FileEntry entry;          // without its name; when it was found
        int error = 0;            // an errno value
    };

    struct OpenedFile {
        std::string name;  // native
        UniqueFd fd;
        struct statx information {};
    };

    bool hasNoSubdirectory(const struct statx& information) const;
    bool isOpen() const { return fd_ >= 0; }
    bool read(FileEntry& entry);
    int ask(const std::string& name, FileEntry& found);
    bool answer(int error);
    Known* recall(const std::string& name);
    bool wantsKind(unsigned char kind) const;
    int lookAt(int directory, const char* name, unsigned char kind, struct statx& information);
    int openNext(int directory, const char* name);
    bool describe(int directory, const char* name, unsigned char kind, FileEntry& entry);
    bool fill(const struct statx& information, std::string_view name, FileEntry& entry) const;
    bool isPseudoMount(const FileEntry& entry) const;
    bool isEmpty() const;
    void readAheadAndClose();
    void close();

    Place place_;
    Wanted wanted_;
    Surroundings around_;
    std::optional<Listing> listing_;
    UniqueFd path_;  // instead of a listing when only look-ups are wanted
    int fd_ = -1;    // of whichever of the two is open
    dev_t device_;
    Rights rights_;
    std::uint64_t lastWrite_;
    std::optional<FileEntry> self_;
    std::vector<FileEntry> ahead_;  // read already
    std::size_t nextAhead_ = 0;
    std::vector<Known> known_;  // looked up already, in the order in which they will be asked for
    std::string knownNames_;    // one after the other: a string each would be an allocation each
    std::size_t nextKnown_ = 0;
    std::vector<std::string> directories_;  // native names, met while files were listed
    std::shared_ptr<CopyTarget> target_;
    bool expectsCopy_ = false;
    OpenedFile opened_;
    std::string looked_;  // the name, in the core's form; empty: nothing was found
    struct statx lookedAt_ {};
    std::optional<std::uint64_t> emptyAt_;  // value of changes_ when it was seen to be empty
    bool askedEmpty_ = false;
    Status status_;
};

}  // namespace coffrelune
