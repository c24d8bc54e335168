#include <wx/access.h>
#include <wx/stattext.h>

#include "views/wx/accessible.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

// Everything but name and role is what the system makes of the widget.
class NamedWidget final : public wxAccessible {
  public:
    NamedWidget(wxWindow* widget, const wxString& name, bool label)
        : wxAccessible(widget), name_(name), label_(label) {}

    wxAccStatus GetName(int child, wxString* name) override {
        if (child != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
        *name = name_;
        return wxACC_OK;
    }
    wxAccStatus GetRole(int child, wxAccRole* role) override {
        if (!label_ || child != wxACC_SELF) return wxACC_NOT_IMPLEMENTED;
        *role = wxROLE_SYSTEM_STATICTEXT;
        return wxACC_OK;
    }

  private:
    wxString name_;
    bool label_;
};

}  // namespace

// The widget owns what is set here.
void nameForReaders(wxWindow& widget, const std::string& name) {
    widget.SetAccessible(new NamedWidget(&widget, toWx(name), false));
}

void presentAsLabel(wxWindow& widget, const std::string& text) {
    widget.SetAccessible(new NamedWidget(&widget, toWx(text), true));
}

// The system makes dialogs of them by itself.
void presentWindow(wxWindow&, WindowRole) {}

// Readers take the text that stands before a control for its name, and its mnemonic leads to the
// control that follows in the order of creation.
void labelFor(wxStaticText& label, wxWindow& control) {
    nameForReaders(control, fromWx(label.GetLabelText()));
}

// The system asks for a label only as long as there is a tab.
void withdrawTabs(wxWindow&) {}

}  // namespace coffrelune
