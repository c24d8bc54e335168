#include "platform/posix/copy_maker.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace coffrelune {

mode_t CopyMaker::processMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

/// What another name may mend.
bool CopyMaker::isNameProblem(int error) {
    return error == EEXIST || error == EINVAL || error == ENOENT || error == EILSEQ ||
           error == ENAMETOOLONG;
}

int CopyMaker::copy(const OpenOriginal& original, WaitingCopy& waiting, CopyObserver* observer) {
    if (abandoned_.load(std::memory_order_relaxed)) return ECANCELED;
    struct stat before = original.before;
    if (original.writable) before.st_mode |= S_IWUSR;
    CopyTarget& target = *waiting.target;
    UniqueFd output;
    NewFile made;
    int error = make(waiting, [&](const char* name) {
        const int failure = target.create(name, before, mask_, output, made);
        if (output.valid()) waiting.temporary = name;
        return failure;
    });
    if (error == 0) {
        error = writer_.write(original.fd.get(), before, output.get(), made, observer);
    }
    if (error == 0) waiting.stamp = writer_.stamp();
    // A late write error may show at the closing.
    if (output.valid() && close(output.release()) != 0 && error == 0 && errno != EINTR) {
        error = errno;
    }
    if (error != 0 && !waiting.temporary.empty()) {
        target.discard(waiting.temporary);
        waiting.temporary.clear();
    }
    return error;
}

}  // namespace coffrelune
