#include "platform/win32/win32_contents.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>

#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {
namespace {

constexpr std::size_t blockBytes = std::size_t{1} << 20;
// No disk has larger sectors.
constexpr std::size_t sectorBytes = 4096;

struct FreeAligned {
    void operator()(char* bytes) const { ::operator delete (bytes, std::align_val_t{sectorBytes}); }
};

/// Reads block by block past what the system remembers of the file, which may not be what the disk
/// has kept. Such reads begin and end with a sector, whatever the caller asks for:
/// https://learn.microsoft.com/windows/win32/fileio/file-buffering
class FileContent final : public Content {
  public:
    FileContent(std::string path, UniqueHandle handle)
        : path_(std::move(path)), handle_(std::move(handle)) {}

    Status read(std::span<char> buffer, std::size_t& length) override {
        length = 0;
        while (length < buffer.size()) {
            if (begin_ == end_) {
                const std::uint32_t error = readOn();
                if (error != 0) return Status::failure(error, path_);
                if (begin_ == end_) return {};
            }
            const std::size_t count = std::min(buffer.size() - length, end_ - begin_);
            std::copy_n(block_.get() + begin_, count, &buffer[length]);
            begin_ += count;
            length += count;
        }
        return {};
    }

  private:
    /// 0 or a system error.
    std::uint32_t readOn() {
        if (atEnd_) return 0;
        DWORD count = 0;
        std::uint32_t error = readBlock(count);
        if (error == ERROR_INVALID_PARAMETER && isAligned_) {
            error = alignNoMore();
            if (error == 0) error = readBlock(count);
        }
        if (error != 0) return error;
        position_ += count;
        begin_ = 0;
        end_ = count;
        atEnd_ = count == 0;
        // The end cuts a sector short; a read from there would be refused.
        if (count % sectorBytes == 0 || !isAligned_) return 0;
        LARGE_INTEGER size{};
        atEnd_ = GetFileSizeEx(handle_.get(), &size) != 0 && size.QuadPart <= position_;
        return atEnd_ ? 0 : alignNoMore();
    }

    std::uint32_t readBlock(DWORD& count) {
        if (ReadFile(handle_.get(), block_.get(), blockBytes, &count, nullptr) != 0) return 0;
        const DWORD error = GetLastError();
        return error == ERROR_HANDLE_EOF ? 0 : error;
    }

    /// Goes on with what the system remembers, where the disk cannot be read by whole sectors.
    std::uint32_t alignNoMore() {
        constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        UniqueHandle again(
            ReOpenFile(handle_.get(), GENERIC_READ, shareAll, FILE_FLAG_SEQUENTIAL_SCAN));
        if (!again.valid()) return GetLastError();
        LARGE_INTEGER place{};
        place.QuadPart = position_;
        if (SetFilePointerEx(again.get(), place, nullptr, FILE_BEGIN) == 0) return GetLastError();
        handle_ = std::move(again);
        isAligned_ = false;
        return 0;
    }

    std::string path_;
    UniqueHandle handle_;
    std::unique_ptr<char, FreeAligned> block_{
        static_cast<char*>(::operator new (blockBytes, std::align_val_t{sectorBytes}))};
    std::size_t begin_ = 0;  // of what the block holds and nobody has taken
    std::size_t end_ = 0;
    LONGLONG position_ = 0;  // in the file, behind the block
    bool isAligned_ = true;
    bool atEnd_ = false;
};

}  // namespace

Status Win32Contents::open(const std::string& path, LinkRule /*links*/,
                           std::unique_ptr<Content>& content) {
    NativePath native;
    Status turned = toNative(path, native);
    if (!turned.ok()) return turned;
    UniqueHandle handle = openShared(native.text, GENERIC_READ, FILE_FLAG_NO_BUFFERING);
    // Where that is refused, what the system remembers is read.
    if (!handle.valid() && GetLastError() == ERROR_INVALID_PARAMETER) {
        handle = openShared(native.text, GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
    }
    if (!handle.valid()) return Status::failure(GetLastError(), path);
    content = std::make_unique<FileContent>(path, std::move(handle));
    return {};
}

}  // namespace coffrelune
