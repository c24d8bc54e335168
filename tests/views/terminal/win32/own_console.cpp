#include "views/terminal/win32/own_console.h"

#include <windows.h>

#include <array>
#include <stdexcept>
#include <vector>

namespace coffrelune {
namespace {

constexpr std::array<DWORD, 3> streams = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

HANDLE open(const wchar_t* name) {
    const HANDLE handle =
        CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) throw std::runtime_error("no console");
    return handle;
}

}  // namespace

OwnConsole::OwnConsole() {
    for (std::size_t i = 0; i < streams.size(); ++i) saved_[i] = GetStdHandle(streams[i]);
    FreeConsole();
    if (!AllocConsole()) throw std::runtime_error("no console");
    input_ = open(L"CONIN$");
    output_ = open(L"CONOUT$");
    SetStdHandle(STD_INPUT_HANDLE, input_);
    SetStdHandle(STD_OUTPUT_HANDLE, output_);
    SetStdHandle(STD_ERROR_HANDLE, output_);
}

OwnConsole::~OwnConsole() {
    CloseHandle(input_);
    CloseHandle(output_);
    FreeConsole();
    for (std::size_t i = 0; i < streams.size(); ++i) SetStdHandle(streams[i], saved_[i]);
}

std::string OwnConsole::row(int number) const {
    std::array<wchar_t, 80> cells{};
    DWORD count = 0;
    ReadConsoleOutputCharacterW(output_, cells.data(), static_cast<DWORD>(cells.size()),
                                {0, static_cast<SHORT>(number)}, &count);
    std::wstring wide(cells.data(), count);
    wide.erase(wide.find_last_not_of(L' ') + 1);
    std::string text(wide.size() * 3, '\0');
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(size));
    return text;
}

void OwnConsole::press(const std::wstring& keys) {
    std::vector<INPUT_RECORD> events;
    for (const wchar_t key : keys) {
        INPUT_RECORD event{};
        event.EventType = KEY_EVENT;
        event.Event.KeyEvent.bKeyDown = TRUE;
        event.Event.KeyEvent.wRepeatCount = 1;
        event.Event.KeyEvent.uChar.UnicodeChar = key;
        if (key == L'\r') event.Event.KeyEvent.wVirtualKeyCode = VK_RETURN;
        events.push_back(event);
    }
    DWORD count = 0;
    WriteConsoleInputW(input_, events.data(), static_cast<DWORD>(events.size()), &count);
}

// The thread that the system starts for it begins in this function of its own.
bool OwnConsole::closeWindow() {
    const HMODULE system = GetModuleHandleW(L"kernelbase.dll");
    if (system == nullptr) return false;
    // Through a pointer without a type, as the address of a function is of another one here.
    auto* address = reinterpret_cast<void*>(GetProcAddress(system, "CtrlRoutine"));
    if (address == nullptr) return false;
    const HANDLE thread =
        CreateThread(nullptr, 0, reinterpret_cast<LPTHREAD_START_ROUTINE>(address),
                     reinterpret_cast<void*>(CTRL_CLOSE_EVENT), 0, nullptr);
    if (thread == nullptr) return false;
    CloseHandle(thread);
    return true;
}

bool OwnConsole::interrupt() {
    return GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) != 0;
}

}  // namespace coffrelune
