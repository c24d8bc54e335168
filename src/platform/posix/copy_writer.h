#pragma once

#include <sys/stat.h>

#include <atomic>

#include "platform/posix/data_copier.h"
#include "platform/posix/extra_attributes.h"
#include "platform/posix/file_times.h"

namespace coffrelune {

/// What a new file has got from the system when it was created.
struct NewFile {
    uid_t user = 0;
    gid_t group = 0;
    mode_t mode = 0;
    dev_t device = 0;
    bool inherits = false;  // an access list of its directory
};

/// Makes an open, empty file the copy of another: bytes, owner, mode, attributes and times, in this
/// order, since each of the later ones bars or changes one before.
class CopyWriter {
  public:
    /// `abandoned`: tested at every chunk; must outlive this object.
    explicit CopyWriter(const std::atomic<bool>& abandoned) : data_(abandoned) {}

    /// `before`: of the original, with the times, owner and mode that the copy gets. `made`: of the
    /// copy. 0 or an errno value, as DataCopier gives it.
    int write(int input, const struct stat& before, int output, const NewFile& made,
              CopyObserver* observer);

    /// What the last file must bear under its name.
    const std::optional<Stamp>& stamp() const { return stamps_.last(); }
    KeptTimes keptTimes() const { return stamps_.kept(); }

  private:
    DataCopier data_;
    ExtraAttributes extras_;
    TimeStamps stamps_;
};

}  // namespace coffrelune
