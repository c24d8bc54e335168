#include "platform/win32/desktop/win32_task_scheduler.h"

#include <windows.h>

#include <array>
#include <optional>
#include <string_view>

#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_services.h"

namespace coffrelune {
namespace {

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == '>') {
            result += "&gt;";
        } else if (static_cast<unsigned char>(c) >= ' ') {
            result += c;
        }
    }
    return result;
}

std::string unescaped(std::string text) {
    constexpr std::array<std::array<std::string_view, 2>, 4> marks = {
        {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}}};
    for (const auto& [mark, character] : marks) {
        for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
            text.replace(at, mark.size(), character);
        }
    }
    return text;
}

/// Where the text of an element stands.
struct Span {
    std::size_t begin = 0;
    std::size_t length = 0;
};

std::optional<Span> spanOf(const std::string& xml, const std::string& name) {
    const std::string open = "<" + name + ">";
    const auto begin = xml.find(open);
    const auto end = xml.find("</" + name + ">");
    if (begin == std::string::npos || end == std::string::npos || end < begin) return {};
    return Span{begin + open.size(), end - begin - open.size()};
}

std::string element(const std::string& xml, const std::string& name) {
    const auto span = spanOf(xml, name);
    return span ? unescaped(xml.substr(span->begin, span->length)) : std::string();
}

void setElement(std::string& xml, const std::string& name, const std::string& text) {
    if (const auto span = spanOf(xml, name)) xml.replace(span->begin, span->length, escaped(text));
}

std::string titleOf(const std::string& configuration) {
    return "Coffrelune, sauvegarde de " + configuration;
}

/// The arguments with the first of `changes` that they hold; empty when they hold none.
std::string argumentsChanged(const std::string& arguments, const std::vector<WordChange>& changes) {
    const std::string line = " " + arguments + " ";
    for (const WordChange& change : changes) {
        const std::string old = " " + argumentLine(change.from) + " ";
        const auto at = line.find(old);
        if (at == std::string::npos) continue;
        std::string changed = line.substr(0, at + 1);
        changed.append(argumentLine(change.to)).append(line, at + old.size() - 1);
        return changed.substr(1, changed.size() - 2);
    }
    return {};
}

/// Reads until the program has closed its end.
std::string readAll(HANDLE pipe) {
    std::string output;
    std::array<char, 4096> buffer{};
    DWORD count = 0;
    while (ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) != 0 &&
           count > 0) {
        output.append(buffer.data(), count);
    }
    return output;
}

/// Runs "schtasks.exe" with these words to its end. Its exit status, or 1 when it could not run.
DWORD runScheduler(const std::string& words, std::string& output) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (CreatePipe(&readEnd, &writeEnd, &inherited, 0) == 0) return 1;
    const UniqueHandle reading(readEnd);
    UniqueHandle writing(writeEnd);
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = writeEnd;
    start.hStdError = writeEnd;
    PROCESS_INFORMATION process{};
    const std::string program = Win32Drives().windowsDirectory() + "\\system32\\schtasks.exe";
    std::wstring command = wide("\"" + program + "\" " + words);
    if (CreateProcessW(wide(program).c_str(), command.data(), nullptr, nullptr, TRUE,
                       CREATE_NO_WINDOW, nullptr, nullptr, &start, &process) == 0) {
        return 1;
    }
    const UniqueHandle running(process.hProcess);
    const UniqueHandle thread(process.hThread);
    writing.reset();
    output = readAll(readEnd);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(process.hProcess, &status);
    return status;
}

std::string quotedName(const std::string& configuration) {
    return "\"Coffrelune\\" + taskName(configuration) + "\"";
}

/// In UTF-16, as the scheduler's own files are. Its path; empty when it cannot be written.
std::wstring writeTemporary(const std::string& xml) {
    std::array<wchar_t, MAX_PATH + 1> directory{};
    std::array<wchar_t, MAX_PATH + 1> path{};
    if (GetTempPathW(MAX_PATH, directory.data()) == 0 ||
        GetTempFileNameW(directory.data(), L"cof", 0, path.data()) == 0) {
        return {};
    }
    const std::wstring text = L"\xFEFF" + wide(xml);
    const UniqueHandle file(CreateFileW(path.data(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    const auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    DWORD count = 0;
    if (!file.valid() || WriteFile(file.get(), text.data(), size, &count, nullptr) == 0) return {};
    return path.data();
}

/// The task as the scheduler writes it; empty without one.
std::string query(const std::string& configuration) {
    std::string output;
    if (runScheduler("/Query /XML /TN " + quotedName(configuration), output) != 0) return {};
    return AnsiCodePage(GetOEMCP()).decode(output);
}

/// Whether a program lies where this one does, and so has the same settings.
bool isBeside(const std::string& command) {
    std::array<wchar_t, 32768> own{};
    const DWORD length = GetModuleFileNameW(nullptr, own.data(), static_cast<DWORD>(own.size()));
    const auto directory = [](std::wstring path) {
        if (!path.empty() && path.front() == L'"') path.erase(0, 1);
        return path.substr(0, path.find_last_of(L'\\'));
    };
    const std::wstring here = directory(std::wstring(own.data(), length));
    const std::wstring there = directory(wide(command));
    return CompareStringOrdinal(here.c_str(), -1, there.c_str(), -1, TRUE) == CSTR_EQUAL;
}

/// Several configurations may share the name of a task, which holds fewer characters than theirs.
bool namesConfiguration(const std::string& xml, const std::string& name) {
    const std::vector<WordChange> words = {{{"--config", name}, {"-"}},
                                           {{"/Auto", "/" + name}, {"-"}}};
    return !argumentsChanged(element(xml, "Arguments"), words).empty();
}

Status create(const std::string& configuration, const std::string& xml) {
    const std::wstring file = writeTemporary(xml);
    if (file.empty()) return Status::failure(GetLastError(), configuration);
    std::string output;
    const DWORD status = runScheduler(
        "/Create /F /TN " + quotedName(configuration) + " /XML \"" + narrow(file) + "\"", output);
    DeleteFileW(file.c_str());  // one that stays is swept with the other temporaries
    return status == 0 ? Status() : Status::failure(error_number::generalFailure, configuration);
}

}  // namespace

std::string taskName(const std::string& configuration) {
    std::string name = configuration;
    for (char& c : name) {
        const bool forbidden = std::string_view("\\/:*?\"<>|%").find(c) != std::string_view::npos;
        if (forbidden || static_cast<unsigned char>(c) < ' ') c = '_';
    }
    return name;
}

// The rules by which every program takes its command line apart: backslashes count double before a
// quote, and before the closing one.
std::string argumentLine(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& word : arguments) {
        if (!line.empty()) line += ' ';
        if (!word.empty() && word.find_first_of(" \t\"") == std::string::npos) {
            line += word;
            continue;
        }
        line += '"';
        std::size_t backslashes = 0;
        for (const char c : word) {
            if (c == '"') line.append(backslashes + 1, '\\');
            backslashes = c == '\\' ? backslashes + 1 : 0;
            line += c;
        }
        line.append(backslashes, '\\');
        line += '"';
    }
    return line;
}

std::string taskXml(const PlannedTask& task, const std::string& day) {
    constexpr std::array names = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                  "Friday", "Saturday", "Sunday"};
    std::string rhythm = "<ScheduleByDay><DaysInterval>1</DaysInterval></ScheduleByDay>";
    if (!task.days.empty()) {
        rhythm = "<ScheduleByWeek><WeeksInterval>1</WeeksInterval><DaysOfWeek>";
        for (const int number : task.days) {
            rhythm += "<" + std::string(names.at(static_cast<std::size_t>(number) - 1)) + "/>";
        }
        rhythm += "</DaysOfWeek></ScheduleByWeek>";
    }
    return R"(<?xml version="1.0" encoding="UTF-16"?>
<Task version="1.2" xmlns="http://schemas.microsoft.com/windows/2004/02/mit/task">
  <RegistrationInfo><Description>)" +
           escaped(titleOf(task.name)) +
           R"(</Description></RegistrationInfo>
  <Triggers><CalendarTrigger><StartBoundary>)" +
           day + "T" + task.time + R"(:00</StartBoundary><Enabled>true</Enabled>)" + rhythm +
           R"(</CalendarTrigger></Triggers>
  <Principals><Principal id="Author"><LogonType>InteractiveToken</LogonType><RunLevel>LeastPrivilege</RunLevel></Principal></Principals>
  <Settings><MultipleInstancesPolicy>IgnoreNew</MultipleInstancesPolicy><DisallowStartIfOnBatteries>false</DisallowStartIfOnBatteries><StopIfGoingOnBatteries>false</StopIfGoingOnBatteries><StartWhenAvailable>true</StartWhenAvailable><Enabled>true</Enabled><ExecutionTimeLimit>PT0S</ExecutionTimeLimit></Settings>
  <Actions Context="Author"><Exec><Command>)" +
           escaped("\"" + task.program + "\"") + "</Command><Arguments>" +
           escaped(argumentLine(task.arguments)) + R"(</Arguments></Exec></Actions>
</Task>
)";
}

std::string taskXmlRenamed(const std::string& xml, const std::string& from, const std::string& to,
                           const std::vector<WordChange>& changes) {
    const std::string arguments = element(xml, "Arguments");
    // The scheduler's program writes "?" for what its code page does not hold, which is no
    // character of a path.
    const bool lossy = (element(xml, "Command") + arguments).find('?') != std::string::npos;
    const std::string changed = argumentsChanged(arguments, changes);
    if (lossy || changed.empty()) return {};
    std::string renamed = xml;
    setElement(renamed, "Arguments", changed);
    if (element(xml, "Description") == titleOf(from))
        setElement(renamed, "Description", titleOf(to));
    setElement(renamed, "URI", "\\Coffrelune\\" + taskName(to));
    return renamed;
}

Status Win32TaskScheduler::write(const PlannedTask& task, std::string& advice) {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    const auto digits = [](unsigned number, std::size_t width) {
        const std::string text = std::to_string(number);
        return std::string(width > text.size() ? width - text.size() : 0, '0') + text;
    };
    const std::string day =
        digits(now.wYear, 4) + "-" + digits(now.wMonth, 2) + "-" + digits(now.wDay, 2);
    advice = "La tâche part pendant que votre session est ouverte.";
    return create(task.name, taskXml(task, day));
}

Status Win32TaskScheduler::read(const std::string& name, PlannedEntry& entry) {
    const std::string xml = query(name);
    if (element(xml, "Command").empty()) return Status::failure(error_number::fileNotFound, name);
    std::string when = element(xml, "StartBoundary");
    const auto time = when.find('T');
    if (time != std::string::npos) when = when.substr(time + 1, 5);
    const std::string week = element(xml, "DaysOfWeek");
    for (std::size_t at = 0; (at = week.find('<', at)) != std::string::npos; ++at) {
        when += " " + week.substr(at + 1, week.find_first_of(" /", at) - at - 1);
    }
    entry = {"Planificateur de tâches, Coffrelune\\" + taskName(name), when,
             element(xml, "Command") + " " + element(xml, "Arguments"),
             isBeside(element(xml, "Command")) && namesConfiguration(xml, name)};
    return {};
}

Status Win32TaskScheduler::remove(const std::string& name) {
    std::string output;
    PlannedEntry entry;
    Status found = read(name, entry);
    const DWORD status = runScheduler("/Delete /F /TN " + quotedName(name), output);
    if (status == 0) return {};
    return found.ok() ? Status::failure(error_number::generalFailure, name) : found;
}

Status Win32TaskScheduler::rename(const std::string& from, const std::string& to,
                                  const std::vector<WordChange>& changes) {
    const std::string xml = query(from);
    if (element(xml, "Command").empty()) return Status::failure(error_number::fileNotFound, from);
    const std::string renamed = taskXmlRenamed(xml, from, to, changes);
    if (renamed.empty()) return Status::failure(error_number::invalidData, from);
    Status created = create(to, renamed);
    // Two configurations may share the name of a task, which is then the new one already.
    const std::wstring old = wide(taskName(from));
    const std::wstring now = wide(taskName(to));
    const bool same = CompareStringOrdinal(old.c_str(), -1, now.c_str(), -1, TRUE) == CSTR_EQUAL;
    if (!created.ok() || same) return created;
    return remove(from);
}

}  // namespace coffrelune
