#include "platform/win32/win32_contents.h"

#include <windows.h>

#include <algorithm>

#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {
namespace {

class FileContent final : public Content {
  public:
    FileContent(std::string path, UniqueHandle handle)
        : path_(std::move(path)), handle_(std::move(handle)) {}

    Status read(std::span<char> buffer, std::size_t& length) override {
        constexpr std::size_t most = std::size_t{1} << 20;
        length = 0;
        while (length < buffer.size()) {
            const auto wanted = static_cast<DWORD>(std::min(buffer.size() - length, most));
            DWORD count = 0;
            if (ReadFile(handle_.get(), &buffer[length], wanted, &count, nullptr) == 0) {
                return Status::failure(GetLastError(), path_);
            }
            if (count == 0) return {};
            length += count;
        }
        return {};
    }

  private:
    std::string path_;
    UniqueHandle handle_;
};

}  // namespace

Status Win32Contents::open(const std::string& path, LinkRule /*links*/,
                           std::unique_ptr<Content>& content) {
    NativePath native;
    Status turned = toNative(path, native);
    if (!turned.ok()) return turned;
    UniqueHandle handle = openShared(native.text, GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
    if (!handle.valid()) return Status::failure(GetLastError(), path);
    content = std::make_unique<FileContent>(path, std::move(handle));
    return {};
}

}  // namespace coffrelune
