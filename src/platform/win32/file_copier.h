#pragma once

#include <atomic>
#include <string>

#include "platform/file_service.h"
#include "platform/win32/data_copier.h"
#include "platform/win32/native_path.h"
#include "platform/win32/temporary_file.h"

namespace coffrelune {

/// What is copied, and where to. Outlives the call.
struct CopyPair {
    const std::string& source;  // in the core's form
    const std::string& destination;
    NativePath from;
    NativePath to;
    WriteGuard& guard;
};

/// Copies single files and links; see FileService::copyFile. The named streams of a file go with
/// it where the destination's volume knows them; an encrypted file is copied encrypted or not at
/// all, and the new content of an encrypted copy as well. A copy that is replaced leaves its access
/// rights to the new one.
class Win32FileCopier {
  public:
    Status copy(const CopyPair& pair, LinkRule sourceLinks, CopyObserver* observer);

    /// From any thread.
    void abandon() { abandoned_.store(true, std::memory_order_relaxed); }

  private:
    Status copyContent(const CopyPair& pair, const FileTimes* times, CopyObserver* observer);
    std::uint32_t copyStreams(const CopyPair& pair, const TemporaryFile& output);
    std::uint32_t copyStream(const std::wstring& source, const std::wstring& destination,
                             std::uint64_t size, WriteGuard& guard);
    Status copyLink(const CopyPair& pair, const FileEntry& link, CopyObserver* observer);

    static_assert(std::atomic<bool>::is_always_lock_free);
    std::atomic<bool> abandoned_ = false;
    DataCopier data_{abandoned_};
};

}  // namespace coffrelune
