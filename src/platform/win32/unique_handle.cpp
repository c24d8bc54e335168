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

}  // namespace coffrelune
