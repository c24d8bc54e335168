#include "platform/posix/copy_writer.h"

#include "platform/posix/rights.h"

namespace coffrelune {

int CopyWriter::write(int input, const struct stat& before, int output, const NewFile& made,
                      CopyObserver* observer) {
    int error = data_.copy(input, before, output, observer);
    const bool foreign = ownerOf(before) != Owner{made.user, made.group};
    if (error == 0 && foreign) error = giveAway(output, "", ownerOf(before));
    if (error == 0 && (foreign || (before.st_mode & 0777) != (made.mode & 07777))) {
        error = keepMode(output, before.st_mode);
    }
    if (error != 0) return error;
    return stamps_.set(output, made.device, before.st_atim, before.st_mtim);
}

}  // namespace coffrelune
