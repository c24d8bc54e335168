#pragma once

#include "operation/operation_fixture.h"

namespace coffrelune {

/// Runs that delete excess files, go on after errors and ask nothing; and ways to stop them.
class UnfinishedRun : public OperationTest {
  protected:
    UnfinishedRun() {
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        system.Confirmation = 1;
        system.AutoMode = true;  // no window waits because of errors
    }
    void backUp() { run(OperationKind::backup); }
    void restore() { run(OperationKind::restore); }
    void run(OperationKind kind) {
        system.operationKind = kind;
        runCopie();
    }
    void stopAt(std::size_t label, const std::string& beginLike) {
        whenEventsRun(
            [label, beginLike](Copie& window) {
                return window.Lbl.at(label).caption().starts_with(beginLike);
            },
            [](Copie& window) { window.requestInterruption(); });
    }
    void change(const std::string& path) { disk().file(path, "changed", fileTimeAt(2024, 3, 9)); }
};

}  // namespace coffrelune
