#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace coffrelune {

/// The Windows system error numbers that the program itself names. Every platform maps its own
/// errors to these, because the number is shown to the user and decides the final message.
/// https://learn.microsoft.com/windows/win32/debug/system-error-codes
namespace error_number {
inline constexpr std::uint32_t none = 0;
inline constexpr std::uint32_t invalidFunction = 1;
inline constexpr std::uint32_t fileNotFound = 2;
inline constexpr std::uint32_t pathNotFound = 3;
inline constexpr std::uint32_t tooManyOpenFiles = 4;
inline constexpr std::uint32_t accessDenied = 5;
inline constexpr std::uint32_t notEnoughMemory = 8;
inline constexpr std::uint32_t invalidData = 13;
inline constexpr std::uint32_t notSameDevice = 17;
inline constexpr std::uint32_t writeProtect = 19;
inline constexpr std::uint32_t notReady = 21;
inline constexpr std::uint32_t generalFailure = 31;
inline constexpr std::uint32_t sharingViolation = 32;
inline constexpr std::uint32_t lockViolation = 33;
inline constexpr std::uint32_t handleEof = 38;
inline constexpr std::uint32_t notSupported = 50;
inline constexpr std::uint32_t deviceDoesNotExist = 55;
inline constexpr std::uint32_t networkNameDeleted = 64;
inline constexpr std::uint32_t invalidParameter = 87;
inline constexpr std::uint32_t diskFull = 112;
inline constexpr std::uint32_t timedOut = 121;
inline constexpr std::uint32_t invalidName = 123;
inline constexpr std::uint32_t directoryNotEmpty = 145;
inline constexpr std::uint32_t alreadyExists = 183;
inline constexpr std::uint32_t nameTooLong = 206;
inline constexpr std::uint32_t fileTooLarge = 223;
inline constexpr std::uint32_t notADirectory = 267;
inline constexpr std::uint32_t operationAborted = 995;
inline constexpr std::uint32_t ioDevice = 1117;
inline constexpr std::uint32_t connectionRefused = 1225;
inline constexpr std::uint32_t networkUnreachable = 1231;
inline constexpr std::uint32_t hostUnreachable = 1232;
inline constexpr std::uint32_t requestAborted = 1235;
inline constexpr std::uint32_t cannotResolveName = 1921;
}  // namespace error_number

/// Outcome of a platform call: success, or a Windows error number with the path concerned.
class [[nodiscard]] Status {
  public:
    Status() = default;

    static Status failure(std::uint32_t code, std::string path) {
        Status status;
        status.code_ = code;
        status.path_ = std::move(path);
        return status;
    }

    bool ok() const { return code_ == error_number::none; }
    /// The system says for certain that nothing bears the name (2) or that a directory on the way
    /// to it is missing (3). Every other failure leaves that open.
    bool saysAbsent() const {
        return code_ == error_number::fileNotFound || code_ == error_number::pathNotFound;
    }
    std::uint32_t code() const { return code_; }
    const std::string& path() const { return path_; }

  private:
    std::uint32_t code_ = error_number::none;
    std::string path_;
};

}  // namespace coffrelune
