#include "platform/win32/win32_output_file.h"

#include <windows.h>

#include <algorithm>

#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {
namespace {

class Win32OutputFile final : public OutputFile {
  public:
    Win32OutputFile(std::string path, UniqueHandle handle)
        : path_(std::move(path)), handle_(std::move(handle)) {}

    Status write(std::string_view text) override {
        constexpr std::size_t most = std::size_t{1} << 20;
        while (!text.empty()) {
            const auto wanted = static_cast<DWORD>(std::min(text.size(), most));
            DWORD count = 0;
            if (WriteFile(handle_.get(), text.data(), wanted, &count, nullptr) == 0) {
                return Status::failure(GetLastError(), path_);
            }
            text.remove_prefix(count);
        }
        return {};
    }

  private:
    std::string path_;
    UniqueHandle handle_;
};

}  // namespace

Status createOutputFile(const std::string& path, std::unique_ptr<OutputFile>& file) {
    NativePath native;
    Status turned = toNative(path, native);
    if (!turned.ok()) return turned;
    UniqueHandle handle(CreateFileW(native.text.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.valid()) return Status::failure(GetLastError(), path);
    file = std::make_unique<Win32OutputFile>(path, std::move(handle));
    return {};
}

}  // namespace coffrelune
