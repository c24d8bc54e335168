#include <gtk/gtk.h>
#include <wx/stattext.h>

#include "platform/characters.h"
#include "views/wx/accessible.h"

namespace coffrelune {
namespace {

AtkObject* readersViewOf(wxWindow& widget) {
    return gtk_widget_get_accessible(widget.GetHandle());
}

// The bus to the readers ends the program for a text that is no UTF-8.
void setName(AtkObject* object, const std::string& name) {
    atk_object_set_name(object, shownBytes(name).c_str());
}

}  // namespace

void nameForReaders(wxWindow& widget, const std::string& name) {
    setName(readersViewOf(widget), name);
    // What takes the focus in a list is inside the part that scrolls.
    if (!GTK_IS_SCROLLED_WINDOW(widget.GetHandle())) return;
    GtkWidget* inside = gtk_bin_get_child(GTK_BIN(widget.GetHandle()));
    if (inside != nullptr) setName(gtk_widget_get_accessible(inside), name);
}

void presentAsLabel(wxWindow& widget, const std::string& text) {
    AtkObject* object = readersViewOf(widget);
    if (atk_object_get_role(object) != ATK_ROLE_LABEL) atk_object_set_role(object, ATK_ROLE_LABEL);
    setName(object, text);
}

void presentWindow(wxWindow& window, WindowRole role) {
    atk_object_set_role(readersViewOf(window),
                        role == WindowRole::message ? ATK_ROLE_ALERT : ATK_ROLE_DIALOG);
}

void labelFor(wxStaticText& label, wxWindow& control) {
    if (!GTK_IS_LABEL(label.GetHandle())) return;
    gtk_label_set_mnemonic_widget(GTK_LABEL(label.GetHandle()), control.GetHandle());
}

// Readers that hear of a tab's end ask for its label, which the toolkit looks for in vain, and it
// complains. Tabs that are not shown have none.
void withdrawTabs(wxWindow& tabs) {
    if (GTK_IS_NOTEBOOK(tabs.GetHandle()))
        gtk_notebook_set_show_tabs(GTK_NOTEBOOK(tabs.GetHandle()), FALSE);
}

}  // namespace coffrelune
