#include "platform/posix/errors.h"

#include <cerrno>

namespace coffrelune {
namespace {

struct ErrorPair {
    int error;
    std::uint32_t number;
};

using namespace error_number;

constexpr ErrorPair pairs[] = {
    {ENOENT, fileNotFound},
    {EACCES, accessDenied},
    {EPERM, accessDenied},
    {EISDIR, accessDenied},
    {EROFS, writeProtect},
    {ENOMEDIUM, notReady},
    {EBUSY, sharingViolation},
    {ETXTBSY, sharingViolation},
    {EAGAIN, lockViolation},
    {EDEADLK, lockViolation},
    {ENODEV, deviceDoesNotExist},
    {ENXIO, deviceDoesNotExist},
    {ESTALE, deviceDoesNotExist},    // the server has another volume there by now
    {ENOTCONN, deviceDoesNotExist},  // the program that served the volume is gone
    {ESHUTDOWN, deviceDoesNotExist},
    {ENETRESET, networkNameDeleted},
    {ECONNABORTED, networkNameDeleted},
    {ECONNRESET, networkNameDeleted},
    {ETIMEDOUT, timedOut},
    {ECONNREFUSED, connectionRefused},
    {ENETDOWN, networkUnreachable},
    {ENETUNREACH, networkUnreachable},
    {EHOSTDOWN, hostUnreachable},
    {EHOSTUNREACH, hostUnreachable},
    {ENOSPC, diskFull},
    {EDQUOT, diskFull},
    {ENAMETOOLONG, nameTooLong},
    {EILSEQ, invalidName},
    {EMFILE, tooManyOpenFiles},
    {ENFILE, tooManyOpenFiles},
    {ENOMEM, notEnoughMemory},
    {EFBIG, fileTooLarge},
    {EEXIST, alreadyExists},
    {ENODATA, handleEof},
    {ENOTDIR, notADirectory},
    {ENOTEMPTY, directoryNotEmpty},
    {ELOOP, cannotResolveName},
    {EXDEV, notSameDevice},
    {EOPNOTSUPP, notSupported},
    {ECANCELED, requestAborted},
    {EIO, ioDevice},
    {EREMOTEIO, ioDevice},
    {EPIPE, ioDevice},
    {EPROTO, ioDevice},
    {EBADMSG, ioDevice},  // a checksum of the file system does not fit
    {EUCLEAN, ioDevice},  // the file system's structure is damaged
    {EMEDIUMTYPE, ioDevice},
    {EINTR, operationAborted},
};

}  // namespace

std::uint32_t windowsError(int error) {
    if (error == 0) return none;
    for (const ErrorPair& pair : pairs) {
        if (pair.error == error) return pair.number;
    }
    return invalidFunction;
}

Status systemFailure(int error, const std::string& path) {
    return Status::failure(windowsError(error), path);
}

}  // namespace coffrelune
