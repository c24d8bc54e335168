#include "platform/posix/copy_writer.h"

#include "platform/posix/rights.h"

namespace coffrelune {

int CopyWriter::write(int input, const struct stat& before, int output, const NewFile& made,
                      CopyObserver* observer) {
    int error = data_.copy(input, before, output, observer);
    const bool foreign = ownerOf(before) != Owner{made.user, made.group};
    if (error == 0 && foreign) error = giveAway(output, "", ownerOf(before));
    const bool otherMode = (before.st_mode & 07777) != (made.mode & 07777);
    if (error == 0 && (foreign || otherMode || made.inherits)) {
        error = keepMode(output, keepableMode(output, before));
    }
    if (error == 0) {
        error = extras_.copy(input, before.st_dev,
                             {output, made.device, before.st_mode & 0777, made.inherits});
    }
    if (error != 0) return error;
    return stamps_.set(output, made.device, before.st_atim, before.st_mtim);
}

}  // namespace coffrelune
