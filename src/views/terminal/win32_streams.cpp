#include <windows.h>

#include <algorithm>
#include <array>

#include "platform/characters.h"
#include "views/terminal/streams.h"

namespace coffrelune::streams {
namespace {

HANDLE handle(Stream stream) {
    switch (stream) {
        case Stream::input:
            return GetStdHandle(STD_INPUT_HANDLE);
        case Stream::output:
            return GetStdHandle(STD_OUTPUT_HANDLE);
        default:
            return GetStdHandle(STD_ERROR_HANDLE);
    }
}

std::wstring widened(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    const int count = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(count), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), count);
    return wide;
}

std::string narrowed(const std::wstring& wide) {
    const int units = static_cast<int>(wide.size());
    const int count =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(count), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), count, nullptr, nullptr);
    return text;
}

// The console takes UTF-16 whatever its code page is, and not too much of it at once.
WriteEnd writeToConsole(HANDLE console, const std::string& text) {
    constexpr std::size_t atOnce = 8192;
    const std::wstring wide = widened(text);
    for (std::size_t written = 0; written < wide.size();) {
        const DWORD wanted = static_cast<DWORD>(std::min(atOnce, wide.size() - written));
        DWORD count = 0;
        if (!WriteConsoleW(console, wide.data() + written, wanted, &count, nullptr) || count == 0) {
            return WriteEnd::lost;
        }
        written += count;
    }
    return WriteEnd::complete;
}

WriteEnd writeToFile(HANDLE file, const std::string& text) {
    for (std::size_t written = 0; written < text.size();) {
        const DWORD wanted =
            static_cast<DWORD>(std::min<std::size_t>(1U << 20U, text.size() - written));
        DWORD count = 0;
        if (!WriteFile(file, text.data() + written, wanted, &count, nullptr)) {
            const DWORD error = GetLastError();
            const bool gone = error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA;
            return gone ? WriteEnd::readerGone : WriteEnd::lost;
        }
        written += count;
    }
    return WriteEnd::complete;
}

}  // namespace

bool isTerminal(Stream stream) {
    DWORD mode = 0;
    return GetConsoleMode(handle(stream), &mode) != 0;
}

std::size_t columns() {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (!GetConsoleScreenBufferInfo(handle(Stream::errors), &screen)) return 80;
    const int width = screen.srWindow.Right - screen.srWindow.Left + 1;
    return width < 20 ? 80 : static_cast<std::size_t>(width);
}

WriteEnd write(Stream stream, const std::string& text) {
    HANDLE target = handle(stream);
    // A process started without streams has nobody to tell, as one whose output goes to NUL.
    if (target == nullptr || target == INVALID_HANDLE_VALUE) return WriteEnd::readerGone;
    return isTerminal(stream) ? writeToConsole(target, text) : writeToFile(target, text);
}

ReadEnd readLine(std::string& line, const std::function<bool()>& givenUp) {
    constexpr wchar_t endOfInput = 0x1A;  // Ctrl-Z
    std::wstring wide;
    std::array<wchar_t, 256> buffer{};
    line.clear();
    while (wide.empty() || wide.back() != L'\n') {
        if (givenUp && givenUp()) return ReadEnd::givenUp;
        DWORD count = 0;
        const BOOL read = ReadConsoleW(handle(Stream::input), buffer.data(),
                                       static_cast<DWORD>(buffer.size()), &count, nullptr);
        if (!read) return ReadEnd::noMore;
        // Ctrl-C ends the wait with nothing; its handler, on another thread, may be late.
        if (count == 0) return ReadEnd::givenUp;
        wide.append(buffer.data(), count);
        if (wide.front() == endOfInput) return ReadEnd::noMore;
    }
    wide.pop_back();
    if (!wide.empty() && wide.back() == L'\r') wide.pop_back();
    line = narrowed(wide);
    return ReadEnd::line;
}

// Blanks instead of an escape code, which a console understands only when it is told to.
std::string overLine(const std::string& text, std::size_t width) {
    std::size_t shown = 0;
    for (std::size_t position = 0; position < text.size(); ++shown) {
        (void)utf8::next(text, position);
    }
    std::string line = "\r" + text;
    if (shown + 1 < width) line.append(width - 1 - shown, ' ');
    return text.empty() ? line + "\r" : line;
}

}  // namespace coffrelune::streams
