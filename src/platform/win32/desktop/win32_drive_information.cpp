#include "platform/win32/desktop/win32_drive_information.h"

#include <windows.h>
// Takes its basic types from the one above.
#include <shellapi.h>

#include <array>

#include "platform/win32/desktop/shell_icon.h"
#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

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

}  // namespace coffrelune
