#include <gtk/gtk.h>
#include <wx/choice.h>
#include <wx/stattext.h>

#include "platform/characters.h"
#include "views/wx/accessible.h"
#include "views/wx/text.h"

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

namespace {

void presentAs(wxWindow& widget, AtkRole role, const std::string& text) {
    AtkObject* object = readersViewOf(widget);
    if (atk_object_get_role(object) != role) atk_object_set_role(object, role);
    setName(object, text);
}

}  // namespace

void presentAsLabel(wxWindow& widget, const std::string& text) {
    presentAs(widget, ATK_ROLE_LABEL, text);
}

void presentAsField(wxWindow& widget, const std::string& text) {
    presentAs(widget, ATK_ROLE_ENTRY, text);
}

void presentWindow(wxWindow& window, WindowRole role) {
    atk_object_set_role(readersViewOf(window),
                        role == WindowRole::message ? ATK_ROLE_ALERT : ATK_ROLE_DIALOG);
}

void labelFor(wxStaticText& label, wxWindow& control) {
    if (!GTK_IS_LABEL(label.GetHandle())) return;
    gtk_label_set_mnemonic_widget(GTK_LABEL(label.GetHandle()), control.GetHandle());
    // A drop-down list would be called by what is chosen in it.
    if (!GTK_IS_COMBO_BOX(control.GetHandle())) return;
    nameForReaders(control, fromWx(label.GetLabelText()));
    if (const auto* list = dynamic_cast<wxChoice*>(&control); list != nullptr)
        tellChoice(control, fromWx(list->GetStringSelection()));
}

namespace {

// The part of a drop-down list that takes the focus.
void findButton(GtkWidget* widget, gpointer found) {
    if (GTK_IS_TOGGLE_BUTTON(widget)) {
        *static_cast<GtkWidget**>(found) = widget;
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), findButton, found);
    }
}

}  // namespace

// The toolkit gives that part no name: readers would say no more than that it is a button.
void tellChoice(wxWindow& dropDown, const std::string& chosen) {
    GtkWidget* button = nullptr;
    findButton(dropDown.GetHandle(), &button);
    if (button == nullptr) return;
    const char* own = atk_object_get_name(readersViewOf(dropDown));
    std::string name = own == nullptr ? "" : own;
    name.erase(name.find_last_not_of(" :") + 1);
    AtkObject* object = gtk_widget_get_accessible(button);
    atk_object_set_role(object, ATK_ROLE_COMBO_BOX);
    setName(object, name.empty() || name == chosen ? chosen : name + " : " + chosen);
}

// Readers that hear of a tab's end ask for its label, which the toolkit looks for in vain, and it
// complains. Tabs that are not shown have none.
void withdrawTabs(wxWindow& tabs) {
    if (GTK_IS_NOTEBOOK(tabs.GetHandle()))
        gtk_notebook_set_show_tabs(GTK_NOTEBOOK(tabs.GetHandle()), FALSE);
}

}  // namespace coffrelune
