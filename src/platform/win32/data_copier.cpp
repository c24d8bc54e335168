#include "platform/win32/data_copier.h"

#include <windows.h>

#include <algorithm>

namespace coffrelune {
namespace {

// Large enough for a network, small enough for a stop to be honoured soon.
constexpr std::uint64_t chunkSize = std::uint64_t{1} << 20;
constexpr std::uint64_t blockSize = std::uint64_t{64} << 10;  // of a sparse file on NTFS

bool isZero(const char* bytes, std::uint64_t size) {
    return std::all_of(bytes, bytes + size, [](char c) { return c == '\0'; });
}

std::uint32_t skip(void* handle, std::uint64_t size) {
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<LONGLONG>(size);
    return SetFilePointerEx(handle, distance, nullptr, FILE_CURRENT) != 0 ? 0 : GetLastError();
}

std::uint32_t writeSparse(void* handle, const char* bytes, std::uint64_t size) {
    std::uint32_t error = 0;
    for (std::uint64_t done = 0; done < size && error == 0; done += blockSize) {
        const std::uint64_t length = std::min(blockSize, size - done);
        error = isZero(bytes + done, length) ? skip(handle, length)
                                             : writeAll(handle, bytes + done, length);
    }
    return error;
}

}  // namespace

std::uint32_t writeAll(void* handle, const char* bytes, std::uint64_t size) {
    for (std::uint64_t done = 0; done < size;) {
        DWORD written = 0;
        const auto length = static_cast<DWORD>(std::min(chunkSize, size - done));
        if (WriteFile(handle, bytes + done, length, &written, nullptr) == 0) return GetLastError();
        if (written == 0) return ERROR_DISK_FULL;
        done += written;
    }
    return 0;
}

std::uint32_t readUpTo(void* handle, char* bytes, std::uint64_t size, std::uint64_t& read) {
    for (read = 0; read < size;) {
        DWORD count = 0;
        const auto length = static_cast<DWORD>(std::min(chunkSize, size - read));
        if (ReadFile(handle, bytes + read, length, &count, nullptr) == 0) return GetLastError();
        if (count == 0) return 0;
        read += count;
    }
    return 0;
}

std::uint32_t DataCopier::copy(void* source, std::uint64_t size, void* destination, bool sparse,
                               CopyObserver* observer) {
    buffer_.resize(std::max<std::size_t>(buffer_.size(), std::min(chunkSize, size)));
    std::uint64_t position = 0;
    do {
        std::uint64_t read = 0;
        const std::uint64_t wanted = std::min(chunkSize, size - position);
        std::uint32_t error = readUpTo(source, buffer_.data(), wanted, read);
        if (error == 0) {
            error = sparse ? writeSparse(destination, buffer_.data(), read)
                           : writeAll(destination, buffer_.data(), read);
        }
        if (error != 0) return error;
        position += read;
        if (observer != nullptr) observer->chunkFinished(position);
        if (abandoned_.load(std::memory_order_relaxed)) return ERROR_REQUEST_ABORTED;
        if (read < wanted) return ERROR_HANDLE_EOF;
    } while (position < size);
    // Skipped zeros at the end have not made the file longer.
    if (sparse && SetEndOfFile(destination) == 0) return GetLastError();
    return 0;
}

}  // namespace coffrelune
