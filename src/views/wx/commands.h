#pragma once

#include <wx/menu.h>
#include <wx/panel.h>

#include "platform/commands.h"
#include "views/wx/peer.h"

class wxHyperlinkCtrl;

namespace coffrelune {

/// A row of buttons with drawings ("commande-" and the key). One of them is in the tab order; the
/// arrow keys lead to the others.
wxWindow* makeToolbar(Peers& peers, wxWindow* parent, CommandBar& bar);

/// Opens the commands as a menu, at the pointer or, for the keyboard, at the widget with the focus.
void popUp(wxWindow& owner, CommandBar& bar, Pictures& pictures);

wxHyperlinkCtrl* makeLink(Peers& peers, wxWindow* parent, LinkLabel& link);

/// Drives the timer as long as the peers are there.
void driveTimer(Peers& peers, Timer& timer);

}  // namespace coffrelune
