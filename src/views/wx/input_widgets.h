#pragma once

#include <wx/choice.h>
#include <wx/listbox.h>
#include <wx/notebook.h>
#include <wx/textctrl.h>

#include "platform/input_controls.h"
#include "views/wx/peer.h"

namespace coffrelune {

/// `name`: what readers say for the field; its tool tip when empty.
wxTextCtrl* makeField(Peers& peers, wxWindow* parent, TextBox& box, const std::string& name = {});
/// `name`: the same.
wxListBox* makeList(Peers& peers, wxWindow* parent, ListBox& list, const std::string& name);
wxChoice* makeDropDown(Peers& peers, wxWindow* parent, ListBox& list);

/// The tabs alone: what they choose stands below them and stays the same.
wxNotebook* makeTabs(Peers& peers, wxWindow* parent, TabStrip& tabs);

}  // namespace coffrelune
