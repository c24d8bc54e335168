#pragma once

#include "engine/engine_fixture.h"
#include "engine/line_trees.h"

namespace coffrelune {

/// C:\Docs copied to F:\Docs.
class Trees : public Engine {
  protected:
    Trees() {
        disk().directory("H:\\Coffrelune");  // for the settings
        disk().file("C:\\Docs\\a", "a");
        disk().file("C:\\Docs\\Sub\\b", "b");
        system.options.SynchroCopie = -1;
    }
    bool backUp() { return run("C:\\Docs", "F:\\"); }
    bool bringBack() { return restore("C:\\Docs", "F:\\"); }
    Certificate own() { return certificate("F:\\Docs"); }
    LineTrees& backupTrees() { return trees(lineRoots("C:\\Docs", "F:\\", Layout::normal)); }

    /// The calls that change the disk below the copy, temporaries and rights apart.
    std::vector<std::string> changes() {
        std::vector<std::string> calls = memory.files().writes();
        std::erase_if(calls, [](const std::string& call) {
            return call.starts_with("removeLeftovers") || call.starts_with("matchDirectory");
        });
        return calls;
    }
};

}  // namespace coffrelune
