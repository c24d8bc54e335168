#include "platform/win32/desktop/win32_drive_information.h"

#include <windows.h>
// These take their basic types from the one above.
#include <commctrl.h>
#include <shellapi.h>

#include <array>
#include <bit>
#include <charconv>
#include <string_view>

#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

constexpr std::string_view iconPrefix = "shell:";

/// The calls on volumes want the root's backslash.
std::wstring rootPath(const std::string& root) {
    std::wstring path = plainPath(root);
    if (!path.ends_with(L'\\')) path += L'\\';
    return path;
}

/// A drive without a medium gives an error instead of a system box, whoever calls.
class NoSystemBox {
  public:
    NoSystemBox() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &old_); }
    NoSystemBox(const NoSystemBox&) = delete;
    NoSystemBox& operator=(const NoSystemBox&) = delete;
    ~NoSystemBox() { SetThreadErrorMode(old_, nullptr); }

  private:
    DWORD old_ = 0;
};

}  // namespace

Status Win32DriveInformation::volumeLabel(const std::string& root, std::string& label) {
    const NoSystemBox quiet;
    label.clear();
    std::array<wchar_t, MAX_PATH + 1> text{};
    if (GetVolumeInformationW(rootPath(root).c_str(), text.data(), static_cast<DWORD>(text.size()),
                              nullptr, nullptr, nullptr, nullptr, 0) == 0) {
        return Status::failure(GetLastError(), root);
    }
    label = narrow(text.data());
    return {};
}

DriveDescription Win32DriveInformation::describe(const std::string& root) {
    const NoSystemBox quiet;
    SHFILEINFOW information{};
    constexpr UINT wanted =
        SHGFI_DISPLAYNAME | SHGFI_TYPENAME | SHGFI_SYSICONINDEX | SHGFI_SHELLICONSIZE;
    if (SHGetFileInfoW(rootPath(root).c_str(), 0, &information, sizeof information, wanted) == 0) {
        return {root, {}, {}};
    }
    const std::string name = narrow(information.szDisplayName);
    return {name.empty() ? root : name, narrow(information.szTypeName),
            shellIconName(information.iIcon)};
}

Status Win32DriveInformation::sizes(const std::string& root, std::uint64_t& total,
                                    std::uint64_t& free) {
    const NoSystemBox quiet;
    ULARGE_INTEGER available{};
    ULARGE_INTEGER all{};
    total = 0;
    free = 0;
    if (GetDiskFreeSpaceExW(rootPath(root).c_str(), &available, &all, nullptr) == 0) {
        return Status::failure(GetLastError(), root);
    }
    total = all.QuadPart;
    free = available.QuadPart;
    return {};
}

std::string shellIconName(int index) {
    return std::string(iconPrefix) + std::to_string(index);
}

void* shellIcon(const std::string& name) {
    if (!name.starts_with(iconPrefix)) return nullptr;
    int index = -1;
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + iconPrefix.size(), end, index);
    if (error != std::errc() || stop != end || index < 0) return nullptr;
    SHFILEINFOW information{};
    // Any file will do: what is wanted is the list that all pictures are in.
    const DWORD_PTR list =
        SHGetFileInfoW(L"C:\\", FILE_ATTRIBUTE_DIRECTORY, &information, sizeof information,
                       SHGFI_USEFILEATTRIBUTES | SHGFI_SYSICONINDEX | SHGFI_SMALLICON);
    if (list == 0) return nullptr;
    return ImageList_GetIcon(std::bit_cast<HIMAGELIST>(list), index, ILD_TRANSPARENT);
}

}  // namespace coffrelune
