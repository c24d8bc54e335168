#pragma once

#include <string>

class wxWindow;
class wxStaticText;

namespace coffrelune {

/// What a screen reader says for a widget that shows no caption of its own.
void nameForReaders(wxWindow& widget, const std::string& name);

/// Has the widget, which draws itself, presented to readers as a label of that text.
void presentAsLabel(wxWindow& widget, const std::string& text);

/// The same as a field whose text can be edited.
void presentAsField(wxWindow& widget, const std::string& text);

enum class WindowRole { dialog, message };

/// A window that readers announce as a dialog, or read out at once as a message.
void presentWindow(wxWindow& window, WindowRole role);

/// The label stands for the control beside it: readers say it there, and its mnemonic leads there.
void labelFor(wxStaticText& label, wxWindow& control);

/// What is chosen in a drop-down list has changed: readers say it with the list's name.
void tellChoice(wxWindow& dropDown, const std::string& chosen);

/// To be called before the tabs go, once their window is hidden.
void withdrawTabs(wxWindow& tabs);

}  // namespace coffrelune
