#include "platform/win32/unique_handle.h"

#include <windows.h>

namespace coffrelune {

void UniqueHandle::reset(void* handle) {
    void* old = std::exchange(handle_, checked(handle));
    if (old == nullptr) return;
    const DWORD error = GetLastError();
    CloseHandle(old);
    SetLastError(error);
}

void* UniqueHandle::checked(void* handle) {
    return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

UniqueHandle openShared(const std::wstring& path, std::uint32_t access, std::uint32_t flags) {
    return UniqueHandle(CreateFileW(path.c_str(), access,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, flags, nullptr));
}

}  // namespace coffrelune
