#pragma once

class wxScrolledWindow;

namespace coffrelune {

/// Has the window scroll to whatever below it takes the focus, as those who use the keyboard need:
/// the toolkit's own way passes over windows that scroll inside one another.
void followFocus(wxScrolledWindow& window);

}  // namespace coffrelune
