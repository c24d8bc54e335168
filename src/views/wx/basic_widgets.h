#pragma once

#include <wx/bmpbuttn.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/gauge.h>
#include <wx/radiobut.h>
#include <wx/statbmp.h>
#include <wx/statbox.h>
#include <wx/stattext.h>

#include "platform/input_controls.h"
#include "views/wx/peer.h"

// Each makes the native widget of a control model and binds them to each other. The parent owns the
// widget.

namespace coffrelune {

/// A text that captions no other control, as the toolkit takes texts to do.
wxStaticText* plainText(wxWindow* parent, const wxString& text, long style = 0);
/// A text shown as it is, "&" included; its widget grows with it.
wxStaticText* makeText(Peers& peers, wxWindow* parent, Label& label);
/// The same on one line of the room there is: what does not fit is left out in the middle, as suits
/// a path, or where `ellipsis` says.
wxStaticText* makeLine(Peers& peers, wxWindow* parent, Label& label,
                       long ellipsis = wxST_ELLIPSIZE_MIDDLE);
/// The same of a text that ends with a path, of which the last component stays.
wxStaticText* makePathLine(Peers& peers, wxWindow* parent, Label& label);
/// The caption of another control, with its mnemonic.
wxStaticText* makePrompt(Peers& peers, wxWindow* parent, Label& label);

wxButton* makeButton(Peers& peers, wxWindow* parent, Button& button);
/// A button that shows a drawing; its tool tip is its name for readers.
wxBitmapButton* makeIconButton(Peers& peers, wxWindow* parent, Button& button,
                               const std::string& picture);
wxCheckBox* makeCheckBox(Peers& peers, wxWindow* parent, CheckBox& box);
/// One more of the group of exclusive choices that is being made.
wxRadioButton* makeOption(Peers& peers, wxWindow* parent, OptionButton& option);
wxStaticBox* makeFrame(Peers& peers, wxWindow* parent, Frame& frame);
wxGauge* makeGauge(Peers& peers, wxWindow* parent, ProgressBar& bar);
/// `size`: edge in density-independent pixels. The room stays when the picture is hidden.
wxStaticBitmap* makePicture(Peers& peers, wxWindow* parent, Picture& picture, int size);

}  // namespace coffrelune
