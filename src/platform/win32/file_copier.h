#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "platform/file_service.h"
#include "platform/win32/data_copier.h"
#include "platform/win32/native_path.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/time_stamps.h"

namespace coffrelune {

/// What is copied, and where to. Outlives the call.
struct CopyPair {
    const std::string& source;  // in the core's form
    const std::string& destination;
    NativePath from;
    NativePath to;
    WriteGuard& guard;
};

/// What a copy is to be beside its content. Outlives the call.
struct CopyTerms {
    LinkRule sourceLinks = LinkRule::refuse;
    const FileEntry* listed = nullptr;  // the original, when somebody has looked at it
    bool isNew = false;                 // somebody has looked, and nothing bears the name
    bool writable = false;              // not read-only
    bool allTimes = false;              // not the last write alone
    CopyObserver* observer = nullptr;
    TimeStamps* stamps = nullptr;  // of the batch that it belongs to
};

/// A copy that has all but its name.
struct WrittenCopy {
    TemporaryFile file;
    std::optional<FileEntry> old;  // what bore the name; not looked for when it is new
    std::uint64_t size = 0;
};

/// Copies single files and links; see FileService::copyFile. The named streams of a file go with
/// it where the destination's volume knows them; an encrypted file is copied encrypted or not at
/// all, and the new content of an encrypted copy as well. A copy that is replaced leaves its access
/// rights to the new one.
class Win32FileCopier {
  public:
    /// Safe when it returns. The pair's guard flushes what it is told of.
    Status copy(const CopyPair& pair, const CopyTerms& terms);

    /// All of a copy but its name, and but what makes it safe.
    Status write(const CopyPair& pair, const CopyTerms& terms, WrittenCopy& copy);

    /// From any thread.
    void abandon() { abandoned_.store(true, std::memory_order_relaxed); }

  private:
    Status writeContent(const CopyPair& pair, const CopyTerms& terms, const FileEntry* link,
                        WrittenCopy& copy);
    std::uint32_t fill(const CopyPair& pair, const CopyTerms& terms, void* input,
                       const FileEntry& before, WrittenCopy& copy);
    std::uint32_t copyStreams(const CopyPair& pair, const TemporaryFile& output);
    std::uint32_t copyStream(const std::wstring& source, const std::wstring& destination,
                             std::uint64_t size, WriteGuard& guard);
    Status writeLink(const CopyPair& pair, const CopyTerms& terms, const FileEntry& link,
                     WrittenCopy& copy);

    static_assert(std::atomic<bool>::is_always_lock_free);
    std::atomic<bool> abandoned_ = false;
    DataCopier data_{abandoned_};
};

}  // namespace coffrelune
