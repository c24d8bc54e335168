#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>

#include "operation/copie.h"
#include "operation/lance_operation.h"
#include "platform/memory/memory_platform.h"
#include "views/terminal/default_signals.h"
#include "views/terminal/redirected_streams.h"
#include "views/terminal/terminal_windows.h"

namespace coffrelune {

/// A program on a disk in memory whose windows are the test's terminal. Everything that uses
/// `program` happens within `run`, which ends with finish().
class TerminalWindowsTest : public testing::Test {
  protected:
    struct Program {
        Program(MemoryPlatform& memory, bool journal)
            : signals(memory.files()),
              windows(terminal, memory.clock(), signals, journal),
              base(memory.platform()),
              platform{base.files, base.drives, base.clock, base.locale,
                       base.ansi,  base.sounds, windows},
              system(platform, {"", R"(C:\Coffrelune)", 3, 5}) {
            system.configurationName = "Travail";
            system.lines[0].source = R"(C:\Docs)";
            system.lines[0].destination = R"(F:\Save)";
            system.lines[0].selected = 1;
            system.Modifie = 1;
        }
        Terminal terminal{false};
        InterruptSignals signals;
        TerminalWindows windows;
        Platform base;
        Platform platform;
        SystemMod system;
        SharedHost host;
    };

    TerminalWindowsTest() {
        memory.disk().directory(R"(C:\Coffrelune)");
        memory.disk().file(R"(C:\Docs\a.txt)", "aaaaa", fileTimeAt(2024, 3, 1));
        memory.disk().file(R"(C:\Docs\b.txt)", "bbb", fileTimeAt(2024, 3, 1));
        memory.disk().directory(R"(F:\Save)");
    }

    void run(const StreamLayout& layout, const std::string& typed,
             const std::function<void(Program&)>& action, bool journal = false) {
        RedirectedStreams streams(layout);
        streams.type(typed);
        std::thread* const user = meanwhile ? meanwhile(streams) : nullptr;
        {
            Program program(memory, journal);
            action(program);
        }
        if (user != nullptr) user->join();
        streams.finish();
        screen = streams.onTerminal();
        output = streams.onOutput();
        errors = streams.onErrors();
    }
    RunEnd backup(const StreamLayout& layout, const std::string& typed = {}, bool journal = false) {
        RunEnd end = RunEnd::cancelled;
        run(
            layout, typed,
            [&](Program& program) {
                OperationLauncher launcher(program.system, program.host, program.windows);
                end = launcher.LanceOperation(RunMode::startedByUser);
            },
            journal);
        return end;
    }
    ReplacementAnswer confirm(const std::string& typed, const StreamLayout& layout = interactive) {
        auto answer = ReplacementAnswer::yes;
        run(layout, typed, [&](Program& program) {
            frmConfirm question({"a.txt", {"Dossier : F:\\", "1 octet", "2 octets"}});
            program.windows.showModal(question);
            answer = question.answer();
        });
        return answer;
    }

    /// Starts what happens on another thread while the program runs, and gives that thread.
    std::function<std::thread*(RedirectedStreams&)> meanwhile;
    DefaultSignals defaultSignals;
    MemoryPlatform memory;
    std::string screen;
    std::string output;
    std::string errors;
};

}  // namespace coffrelune
