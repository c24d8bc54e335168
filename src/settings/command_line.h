#pragma once

#include <optional>
#include <string>

namespace coffrelune {

/// What the arguments ask for.
struct CommandLine {
    bool AutoMode = false;
    /// The configuration named last, in ProperCase; empty when the last name is ("/Auto/"); nothing
    /// when none is given.
    std::optional<std::string> configurationName;
};

/// Understands the arguments after the program path, as one text: "/Auto /Travail", "/travail", or
/// a bare name, which is then taken whole, blanks included.
CommandLine readCommandLine(const std::string& text);

}  // namespace coffrelune
