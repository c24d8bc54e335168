#pragma once

#include "engine/engine_fixture.h"

namespace coffrelune {

/// The deletion walk over one line: C:\Docs copied to F:\Save unless a test says otherwise.
class ExcessFiles : public Engine {
  protected:
    ExcessFiles() { disk().directory("H:\\Coffrelune"); }  // for the settings

    using EngineBench::clean;
    void clean(const std::string& source = "C:\\Docs", const std::string& destination = "F:\\Save",
               const std::vector<LineRoots>& others = {}) {
        (void)clean(lineRoots(source, destination, Layout::normal), others);
    }
    /// Reads a line back, under a certificate as its last backup would have left it.
    void cleanBack(const std::string& source, const std::string& destination) {
        const LineRoots there = lineRoots(source, destination, Layout::normal);
        certify(there);
        (void)clean(lineRoots(source, destination, Layout::reversed));
    }
    /// The certificate of a backup that copied everything.
    Certificate certify(const LineRoots& roots) {
        LineTrees line(state, errors, {0, roots, exclusions});
        EXPECT_TRUE(line.take());
        EXPECT_TRUE(line.conclude().ok());
        return *line.certificate();
    }
    /// The same file on both sides.
    void pair(const std::string& name) {
        disk().file("C:\\Docs\\" + name, "same");
        disk().file("F:\\Save\\Docs\\" + name, "same");
    }
    bool kept(const std::string& path) { return disk().exists(path); }
};

}  // namespace coffrelune
