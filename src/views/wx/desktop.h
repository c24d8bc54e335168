#pragma once

#include <wx/bmpbndl.h>

#include <string>
#include <vector>

class wxAnyButton;
class wxWindow;

// What the windows ask of the desktop, which each system does in its own way.

namespace coffrelune {

/// What the program asks of the desktop's look for its own windows; once, when the toolkit is up.
void adaptDesktopLook();

/// False when windows cannot be made although the toolkit is up.
bool canMakeWindows();

/// A picture that the desktop has for one of its own things; empty when it knows none of the name.
wxBitmapBundle systemPicture(const std::string& name);

/// How a button looks while it is disabled, where the system does not fade its picture by itself.
void drawDisabled(wxAnyButton& button, const wxBitmapBundle& faint);

/// The system's chooser of a directory, with `includeFiles` also of a file. Native paths; `start`
/// may be empty. Empty when cancelled.
std::string chooseNativeFolder(wxWindow* parent, bool includeFiles, const std::string& prompt,
                               const std::string& start);

/// Shows the mnemonics of the tabs, whose captions mark them by "&", and has the toolkit press them
/// from anywhere in the window. False where it cannot.
bool giveTabsMnemonics(wxWindow& tabs, const std::vector<std::string>& captions);

/// The list has entries of which none is selected: none becomes so before the user chooses it. The
/// list must tell no selection meanwhile.
void keepUnchosen(wxWindow& list);

/// The drop-down list may be narrower than its entries, which end in an ellipsis then.
void shortenEntries(wxWindow& dropDown);

/// From here on the system tells the user this reason when the session is about to end and the
/// program refuses. It keeps nothing from ending: that is the answer to the system's question.
void giveReasonToWait(const wxWindow& main, const std::string& reason);

/// There is none any more.
void withdrawReasonToWait(const wxWindow& main);

}  // namespace coffrelune
