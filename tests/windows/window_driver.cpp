// Works the window program as a user does, through the messages that every Windows program answers:
// finds windows and controls by caption, presses them, types, reads. One command a call, so that a
// scenario elsewhere decides what to do next.
//
//   window_driver wait TITLE TEXT...     until a window of that title shows each TEXT (60 s)
//   window_driver gone TITLE             until there is none
//   window_driver texts TITLE            a line for each visible control: class, state, caption
//   window_driver press TITLE CAPTION    presses a button, a check box, a label
//   window_driver type TITLE INDEX TEXT  replaces the text of the window's INDEXth field, from 0
//   window_driver tab TITLE INDEX        shows a tab
//   window_driver pick TITLE INDEX       selects an entry of the window's first list
//   window_driver close TITLE            the close box
//   window_driver close-others TITLE     asks every other window of its thread to close
//   window_driver session TITLE          asks whether the session may end, and prints the answer
//   window_driver ends TITLE             tells that it ends now
//   window_driver goes-on TITLE          tells that it does not end
//   window_driver stay                   starts the desktop, says so, stays until ended
// Exit status 0 when it was done, 1 when there was nothing to do it to.
#include <windows.h>
// After the above.
#include <commctrl.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr DWORD patience = 60'000;  // milliseconds
constexpr DWORD pause = 50;
constexpr UINT moment = 1'000;  // milliseconds that a program may take to answer

std::string utf8(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    std::string bytes(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), size,
                                                                   nullptr, 0, nullptr, nullptr)),
                      '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), size, bytes.data(),
                        static_cast<int>(bytes.size()), nullptr, nullptr);
    return bytes;
}

// Gives what the window answers, 0 when it does not in time: a busy program holds nothing up.
LRESULT ask(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0) {
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(window, message, first, second, SMTO_ABORTIFHUNG, moment, &answer) == 0)
        return 0;
    return static_cast<LRESULT>(answer);
}

std::wstring textOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(ask(window, WM_GETTEXTLENGTH)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

// A title is known without asking its program, which may be busy.
std::wstring titleOf(HWND window) {
    constexpr int longest = 256;
    wchar_t title[longest];
    return {title, static_cast<std::size_t>(GetWindowTextW(window, title, longest))};
}

bool answers(HWND window) {
    return SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, moment, nullptr) != 0;
}

// A caption as it is read: without the mark of its mnemonic.
std::wstring captionOf(HWND window) {
    std::wstring caption;
    const std::wstring text = textOf(window);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'&' && ++i == text.size()) break;
        caption += text[i];
    }
    return caption;
}

std::wstring classOf(HWND window) {
    constexpr int longest = 256;
    wchar_t name[longest];
    return {name, static_cast<std::size_t>(GetClassNameW(window, name, longest))};
}

// Every visible control below a window.
std::vector<HWND> controlsOf(HWND window) {
    std::vector<HWND> found;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        if (IsWindowVisible(child) == 0) continue;
        found.push_back(child);
        for (HWND below : controlsOf(child)) found.push_back(below);
    }
    return found;
}

bool shows(HWND window, const std::wstring& text) {
    for (HWND control : controlsOf(window)) {
        if (captionOf(control).find(text) != std::wstring::npos) return true;
    }
    return false;
}

// The foremost visible window of that title that shows every text.
HWND find(const std::wstring& title, const std::vector<std::wstring>& texts = {}) {
    for (HWND window = GetTopWindow(nullptr); window != nullptr;
         window = GetWindow(window, GW_HWNDNEXT)) {
        if (IsWindowVisible(window) == 0 || titleOf(window) != title || !answers(window)) continue;
        bool all = true;
        for (const std::wstring& text : texts) all = all && shows(window, text);
        if (all) return window;
    }
    return nullptr;
}

template <typename Condition>
bool comes(Condition condition) {
    const ULONGLONG end = GetTickCount64() + patience;
    while (!condition()) {
        if (GetTickCount64() > end) return false;
        Sleep(pause);
    }
    return true;
}

bool print(HWND window) {
    for (HWND control : controlsOf(window)) {
        const bool ticked =
            ask(control, BM_GETCHECK) == BST_CHECKED && classOf(control) == L"Button";
        std::printf("%s\t%s%s\t%s\n", utf8(classOf(control)).c_str(),
                    IsWindowEnabled(control) != 0 ? "actif" : "inactif", ticked ? " coché" : "",
                    utf8(captionOf(control)).c_str());
    }
    return true;
}

// Nobody clicks in a window before it has come to the front. Its program puts the focus where it
// belongs at that moment, which lets go of a button that is held down: the press would be lost. Nor
// in one that still waits for the answer to another.
bool isInFront(HWND window) {
    GUITHREADINFO thread{};
    thread.cbSize = sizeof(thread);
    if (GetForegroundWindow() != window) SetForegroundWindow(window);
    return GetForegroundWindow() == window && IsWindowEnabled(window) != 0 && answers(window) &&
           GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread) != 0 &&
           thread.hwndActive == window && thread.hwndFocus != nullptr &&
           thread.hwndCapture == nullptr;
}

// Posted, so that a press which opens a window does not wait for that one to close.
bool press(HWND window, const std::wstring& caption) {
    for (HWND control : controlsOf(window)) {
        if (captionOf(control) != caption || IsWindowEnabled(control) == 0) continue;
        if (classOf(control) == L"Button") return PostMessageW(control, BM_CLICK, 0, 0) != 0;
        constexpr LPARAM inside = MAKELPARAM(5, 5);
        return PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, inside) != 0 &&
               PostMessageW(control, WM_LBUTTONUP, 0, inside) != 0;
    }
    return false;
}

HWND ofClass(HWND window, const std::wstring& name, int index) {
    for (HWND control : controlsOf(window)) {
        if (_wcsicmp(classOf(control).c_str(), name.c_str()) == 0 && index-- == 0) return control;
    }
    return nullptr;
}

bool type(HWND window, int index, const std::wstring& text) {
    HWND field = ofClass(window, WC_EDITW, index);
    return field != nullptr &&
           ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str())) != 0;
}

bool showTab(HWND window, int index) {
    HWND tabs = ofClass(window, L"_wx_SysTabCtl32", 0);
    return tabs != nullptr &&
           PostMessageW(tabs, TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0) != 0;
}

// Selecting by program tells nobody; the notification of a user's choice is sent after it.
bool pick(HWND window, int index) {
    HWND list = ofClass(window, WC_LISTBOXW, 0);
    if (list == nullptr) return false;
    if (ask(list, LB_SETCURSEL, static_cast<WPARAM>(index)) == LB_ERR) return false;
    return PostMessageW(GetParent(list), WM_COMMAND,
                        MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(list)), LBN_SELCHANGE),
                        reinterpret_cast<LPARAM>(list)) != 0;
}

// The system asks every window; each speaks for its program.
bool askSession(HWND window) {
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(window, WM_QUERYENDSESSION, 0, 0, SMTO_NORMAL, patience, &answer) == 0)
        return false;
    std::printf("%d\n", static_cast<int>(answer));
    return true;
}

bool tellSession(HWND window, bool ends) {
    return SendMessageTimeoutW(window, WM_ENDSESSION, ends ? TRUE : FALSE, 0, SMTO_NORMAL, patience,
                               nullptr) != 0;
}

// Those windows of its thread that nobody sees: the system's own tools ask all of them to close, in
// any order, when they end a program.
bool closeOthers(HWND window) {
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    std::vector<HWND> others;
    HWND other = nullptr;
    while ((other = FindWindowExW(nullptr, other, nullptr, nullptr)) != nullptr) {
        if (other != window && GetWindowThreadProcessId(other, nullptr) == thread)
            others.push_back(other);
    }
    for (HWND one : others) PostMessageW(one, WM_CLOSE, 0, 0);
    return !others.empty();
}

bool act(HWND window, const std::wstring& command, const std::vector<std::wstring>& rest) {
    if (command == L"texts") return print(window);
    if (command == L"close") return PostMessageW(window, WM_CLOSE, 0, 0) != 0;
    if (command == L"close-others") return closeOthers(window);
    if (command == L"session") return askSession(window);
    if (command == L"ends" || command == L"goes-on") return tellSession(window, command == L"ends");
    if (command == L"press" && rest.size() == 1) return press(window, rest[0]);
    if (command == L"tab" && rest.size() == 1) return showTab(window, std::stoi(rest[0]));
    if (command == L"pick" && rest.size() == 1) return pick(window, std::stoi(rest[0]));
    if (command == L"type" && rest.size() == 2) return type(window, std::stoi(rest[0]), rest[1]);
    return false;
}

// What a user does needs the window in front; the others come from the system, whatever is there.
bool isUsers(const std::wstring& command) {
    return command != L"texts" && command != L"session" && command != L"ends" &&
           command != L"goes-on";
}

bool run(const std::vector<std::wstring>& words) {
    const std::wstring& command = words[0];
    const std::wstring& title = words[1];
    const std::vector<std::wstring> rest(words.begin() + 2, words.end());
    if (command == L"wait") return comes([&] { return find(title, rest) != nullptr; });
    if (command == L"gone") return comes([&] { return find(title, rest) == nullptr; });
    // A window comes before what is in it.
    return comes([&] {
        HWND window = command == L"press" && !rest.empty() ? find(title, {rest[0]}) : find(title);
        if (window == nullptr || (isUsers(command) && !isInFront(window))) return false;
        return act(window, command, rest);
    });
}

}  // namespace

int wmain(int count, wchar_t** values) {
    const std::vector<std::wstring> words(values + 1, values + count);
    if (words.size() == 1 && words[0] == L"stay") {
        GetDesktopWindow();
        std::puts("prêt");
        std::fflush(stdout);
        Sleep(INFINITE);
    }
    if (words.size() < 2) return 2;
    return run(words) ? 0 : 1;
}
