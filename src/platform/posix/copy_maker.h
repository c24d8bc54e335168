#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/names.h"
#include "platform/posix/commit_thread.h"
#include "platform/posix/copy_writer.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// A file that is being copied.
struct OpenOriginal {
    UniqueFd fd;            // at its start
    struct stat before {};  // with the times, owner and mode that the copy gets
    bool writable = false;  // the copy is, whatever the mode says
};

/// Makes copies that wait for their names. Each thread that copies has its own.
class CopyMaker {
  public:
    /// Both outlive this. `abandoned` ends copies. `token`: of the run, the same for all; temporary
    /// names count it up.
    CopyMaker(const std::atomic<bool>& abandoned, std::atomic<std::uint64_t>& token)
        : abandoned_(abandoned), writer_(abandoned), token_(token) {}

    /// Copies a file into `waiting.target`, for `waiting.name`. 0 or an errno value; nothing is
    /// left behind then.
    int copy(const OpenOriginal& original, WaitingCopy& waiting, CopyObserver* observer);

    /// Makes a file or a link by `make(name)`: under its own name where that shows it to nobody
    /// yet. A name that is taken there by another original, or refused, is told when the copy would
    /// get it.
    template <typename Make>
    int make(WaitingCopy& waiting, Make make);

    KeptTimes keptTimes() const { return writer_.keptTimes(); }

  private:
    const std::atomic<bool>& abandoned_;
    CopyWriter writer_;
    std::atomic<std::uint64_t>& token_;
    const mode_t mask_ = processMask();

    static mode_t processMask();
    static bool isNameProblem(int error);
};

template <typename Make>
int CopyMaker::make(WaitingCopy& waiting, Make make) {
    int error = EEXIST;
    std::string name = waiting.name;
    if (waiting.target->givesNames()) error = make(name.c_str());
    // Twice: by the rarest of chances, one of these is taken as well.
    const auto isAnswered = [&] { return !waiting.temporary.empty() || !isNameProblem(error); };
    for (int attempt = 0; attempt < 2 && !isAnswered(); ++attempt) {
        name = ownFileName(OwnFile::temporary, token_++);
        error = make(name.c_str());
    }
    if (error == 0) waiting.temporary = std::move(name);
    return error;
}

}  // namespace coffrelune
