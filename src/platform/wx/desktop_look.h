#pragma once

namespace coffrelune {

/// What the program asks of the desktop's look for its own windows; once, when the toolkit is up.
void adaptDesktopLook();

/// False when windows cannot be made although the toolkit is up.
bool canMakeWindows();

}  // namespace coffrelune
