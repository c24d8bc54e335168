#include "platform/win32/desktop/shell_icon.h"

#include <windows.h>
// These take their basic types from the one above.
#include <commctrl.h>
#include <shellapi.h>

#include <bit>
#include <charconv>
#include <string_view>

namespace coffrelune {
namespace {

constexpr std::string_view prefix = "shell:";

}  // namespace

std::string shellIconName(int index) {
    return std::string(prefix) + std::to_string(index);
}

void* shellIcon(const std::string& name) {
    if (!name.starts_with(prefix)) return nullptr;
    int index = -1;
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + prefix.size(), end, index);
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
