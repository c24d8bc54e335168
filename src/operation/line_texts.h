#pragma once

#include <string>
#include <vector>

#include "engine/line_roots.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What the two labels of a line show.
struct LineTexts {
    std::string source;       // `LblS`: where files are read from
    std::string destination;  // `LblD`: where they go
};

/// In the reversed layout the left text is the destination joined with the source's last component
/// by exactly one backslash, the destination alone for a drive root, and empty without a
/// destination.
LineTexts lineTexts(const SystemMod& system, int line);

enum class LineSide { left, right };

/// The user has put `text` into a label: the line's source or destination takes it and its keys are
/// written. In the reversed layout the right label is the source alone, and the left one loses the
/// component that was appended for display, if it still ends with it: editing F:\Save\Docs to
/// G:\Copies\Docs makes G:\Copies the destination, editing it to G:\Copies makes it that too.
/// A settings file that cannot be written leaves the line in memory as edited.
void editLine(SystemMod& system, int line, LineSide side, const std::string& text);

/// A text for the user for every two lines whose copies lie in the same place, though they are
/// copies of different sources, when the operation takes in one of them: two cards with a
/// directory DCIM each, saved to one disk. The lines are run as they are, what bears one name
/// in both is kept once.
std::vector<std::string> sharedCopies(const SystemMod& system);

}  // namespace coffrelune
