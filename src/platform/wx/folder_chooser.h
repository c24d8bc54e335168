#pragma once

#include <string>

class wxWindow;

namespace coffrelune {

/// The system's chooser of a directory, with `includeFiles` also of a file. Native paths; `start`
/// may be empty. Empty when cancelled.
std::string chooseNativeFolder(wxWindow* parent, bool includeFiles, const std::string& prompt,
                               const std::string& start);

}  // namespace coffrelune
