#include "platform/out_of_memory.h"

#include <windows.h>

#include <new>

namespace coffrelune {
namespace {

constexpr DWORD readingTime = 30'000;  // milliseconds: an unattended run has nobody to answer
constexpr int longest = 256;

DWORD WINAPI showBox(void* text) {
    MessageBoxW(nullptr, static_cast<const wchar_t*>(text), L"Coffrelune",
                MB_OK | MB_ICONERROR | MB_SETFOREGROUND);
    return 0;
}

void sayAndEnd() {
    wchar_t text[longest];
    MultiByteToWideChar(CP_UTF8, 0, outOfMemory, sizeof outOfMemory, text, longest);
    HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    DWORD written = 0;
    // The end is told by the status as well: nothing is left to do where the text is lost.
    if (errors != nullptr && GetConsoleMode(errors, &mode) != 0) {
        WriteConsoleW(errors, text, static_cast<DWORD>(lstrlenW(text)), &written, nullptr);
    } else if (errors == nullptr || errors == INVALID_HANDLE_VALUE ||
               WriteFile(errors, outOfMemory, sizeof outOfMemory - 1, &written, nullptr) == 0) {
        // On a thread of its own, the box lets no window of the program go on.
        HANDLE box = CreateThread(nullptr, 0, showBox, text, 0, nullptr);
        if (box != nullptr) WaitForSingleObject(box, readingTime);
    }
    TerminateProcess(GetCurrentProcess(), outOfMemoryStatus);
}

}  // namespace

void endWhenMemoryEnds() {
    std::set_new_handler(sayAndEnd);
}

}  // namespace coffrelune
