#include <wx/access.h>
#include <wx/stattext.h>

#include <optional>

#include "views/wx/accessible.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

// Everything but name and role is what the system makes of the widget.
class NamedWidget final : public wxAccessible {
  public:
    /// `role`: that of the system's own widget without one.
    NamedWidget(wxWindow* widget, const wxString& name, std::optional<wxAccRole> role)
        : wxAccessible(widget), name_(name), role_(role) {}

    wxAccStatus GetName(int child, wxString* name) override {
        if (child != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
        *name = name_;
        return wxACC_OK;
    }
    wxAccStatus GetRole(int child, wxAccRole* role) override {
        if (!role_ || child != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
        *role = *role_;
        return wxACC_OK;
    }

  private:
    wxString name_;
    std::optional<wxAccRole> role_;
};

}  // namespace

// The widget owns what is set here.
void nameForReaders(wxWindow& widget, const std::string& name) {
    widget.SetAccessible(new NamedWidget(&widget, toWx(name), std::nullopt));
}

void presentAsLabel(wxWindow& widget, const std::string& text) {
    widget.SetAccessible(new NamedWidget(&widget, toWx(text), wxROLE_SYSTEM_STATICTEXT));
}

void presentAsField(wxWindow& widget, const std::string& text) {
    widget.SetAccessible(new NamedWidget(&widget, toWx(text), wxROLE_SYSTEM_TEXT));
}

// The system makes dialogs of them by itself.
void presentWindow(wxWindow&, WindowRole) {}

// Readers take the text that stands before a control for its name, and its mnemonic leads to the
// control that follows in the order of creation.
void labelFor(wxStaticText& label, wxWindow& control) {
    if (control.GetAccessible() == nullptr) nameForReaders(control, fromWx(label.GetLabelText()));
}

// The system says it by itself.
void tellChoice(wxWindow&, const std::string&) {}

// The system asks for a label only as long as there is a tab.
void withdrawTabs(wxWindow&) {}

}  // namespace coffrelune
