#include <gtk/gtk.h>
#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/dirdlg.h>
#include <wx/filectrl.h>
#include <wx/filename.h>
#include <wx/sizer.h>

#include <algorithm>
#include <clocale>

#include "views/wx/accessible.h"
#include "views/wx/desktop.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

// A link under the pointer has the colour of the text, whatever the theme: it answers.
void colourLinks() {
    GtkCssProvider* provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(
        provider, "button.link:hover, button.link:hover label { color: @theme_fg_color; }", -1,
        nullptr);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(),
                                              GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
}

// The toolkit's own dialogs speak the user's language; the program reads and writes numbers without
// it, and its windows stay laid out for French.
void speakUsersLanguage() {
    // A language that the system does not have leaves everything as it is.
    if (std::setlocale(LC_ALL, "") != nullptr) (void)std::setlocale(LC_NUMERIC, "C");
}

}  // namespace

// Menus show the same pictures as the toolbar, so that one is learnt from the other.
void adaptDesktopLook() {
    speakUsersLanguage();
    g_object_set(gtk_settings_get_default(), "gtk-menu-images", TRUE, nullptr);
    colourLinks();
}

// The toolkit itself does not start without a display.
bool canMakeWindows() {
    return true;
}

// The drives' names are those that desktops use, and the program's own drawings have them too: they
// go with the others, whatever theme is set.
wxBitmapBundle systemPicture(const std::string&) {
    return {};
}

namespace {

// Asked of the desktop itself: its names are bytes, the toolkit's are text. Takes the string, which
// may be null.
std::string takeBytes(gchar* path) {
    std::string bytes = path == nullptr ? "" : path;
    g_free(path);
    return bytes;
}

// The desktop leaves the list of its places without a name for readers.
void namePlaces(GtkWidget* widget, gpointer) {
    if (GTK_IS_LIST_BOX(widget)) {
        atk_object_set_name(gtk_widget_get_accessible(widget), "Emplacements");
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), namePlaces, nullptr);
    }
}

// The desktop has choosers for directories and for files, none for either. A list selects its first
// entry by itself, so one button for both would take that one from whoever means the directory
// shown: each has its own button.
class EitherChooser final : public wxDialog {
  public:
    EitherChooser(wxWindow* parent, const std::string& prompt, const wxString& start)
        : wxDialog(parent, wxID_ANY, toWx(prompt), wxDefaultPosition, wxDefaultSize,
                   wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
          files_(new wxFileCtrl(this, wxID_ANY, start, wxEmptyString, "*", wxFC_OPEN)) {
        constexpr int border = 12;
        presentWindow(*this, WindowRole::dialog);
        namePlaces(files_->GetHandle(), nullptr);
        auto* buttons = new wxBoxSizer(wxHORIZONTAL);
        auto* shown = new wxButton(this, wxID_ANY, toWx("Choisir le &répertoire affiché"));
        auto* selected = new wxButton(this, wxID_ANY, toWx("Choisir la &sélection"));
        buttons->AddStretchSpacer();
        buttons->Add(shown);
        buttons->Add(selected, wxSizerFlags().Border(wxLEFT, FromDIP(border)));
        buttons->Add(new wxButton(this, wxID_CANCEL, toWx("&Annuler")),
                     wxSizerFlags().Border(wxLEFT, FromDIP(border)));
        auto* whole = new wxBoxSizer(wxVERTICAL);
        whole->Add(files_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(border)));
        whole->Add(buttons,
                   wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(border)));
        SetSizer(whole);
        SetSize(FromDIP(wxSize(760, 520)));
        CentreOnParent();
        files_->SetFocus();
        g_signal_connect(GetHandle(), "key-press-event", G_CALLBACK(&EitherChooser::press), this);
        shown->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
            accept(gtk_file_chooser_get_current_folder(chooser()));
        });
        selected->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { acceptSelection(); });
        files_->Bind(wxEVT_FILECTRL_FILEACTIVATED, [this](wxFileCtrlEvent&) { acceptSelection(); });
    }

    const std::string& chosen() const { return chosen_; }

  private:
    // The lists inside are the desktop's own: the toolkit does not hear their keys.
    static gboolean press(GtkWidget*, GdkEventKey* event, gpointer dialog) {
        if (event->keyval != GDK_KEY_Escape) return FALSE;
        static_cast<EitherChooser*>(dialog)->EndModal(wxID_CANCEL);
        return TRUE;
    }

    GtkFileChooser* chooser() { return GTK_FILE_CHOOSER(files_->GetHandle()); }
    void acceptSelection() { accept(gtk_file_chooser_get_filename(chooser())); }

    // Empty when there is no such place, as among the recent files.
    void accept(gchar* path) {
        chosen_ = takeBytes(path);
        if (!chosen_.empty()) EndModal(wxID_OK);
    }

    wxFileCtrl* files_;
    std::string chosen_;
};

// The nearest directory that is there: the chooser begins where the user has been before.
wxString existing(const std::string& start) {
    wxFileName name = wxFileName::DirName(toWx(start));
    while (!name.DirExists() && name.GetDirCount() > 0) name.RemoveLastDir();
    return start.empty() ? wxString() : name.GetPath();
}

}  // namespace

// The desktop fades them itself.
void drawDisabled(wxAnyButton& /*button*/, const wxBitmapBundle& /*faint*/) {}

std::string chooseNativeFolder(wxWindow* parent, bool includeFiles, const std::string& prompt,
                               const std::string& start) {
    if (includeFiles) {
        EitherChooser dialog(parent, prompt, existing(start));
        return dialog.ShowModal() == wxID_OK ? dialog.chosen() : std::string();
    }
    wxDirDialog dialog(parent, toWx(prompt), existing(start),
                       wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
    if (dialog.ShowModal() != wxID_OK) return {};
    return takeBytes(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog.GetHandle())));
}

namespace {

// What stands in a tab is a box, in which one thing is the label.
void findLabel(GtkWidget* widget, gpointer found) {
    if (GTK_IS_LABEL(widget)) {
        *static_cast<GtkWidget**>(found) = widget;
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_foreach(GTK_CONTAINER(widget), findLabel, found);
    }
}

}  // namespace

// The toolkit presses what it finds as the label's target, which is the tab here.
bool giveTabsMnemonics(wxWindow& tabs, const std::vector<std::string>& captions) {
    if (!GTK_IS_NOTEBOOK(tabs.GetHandle())) return false;
    GtkNotebook* notebook = GTK_NOTEBOOK(tabs.GetHandle());
    for (std::size_t i = 0; i < captions.size(); ++i) {
        GtkWidget* page = gtk_notebook_get_nth_page(notebook, static_cast<gint>(i));
        GtkWidget* tab = page == nullptr ? nullptr : gtk_notebook_get_tab_label(notebook, page);
        GtkWidget* label = nullptr;
        if (tab != nullptr) findLabel(tab, &label);
        if (label == nullptr) return false;
        std::string caption = captions[i];
        std::replace(caption.begin(), caption.end(), '&', '_');
        gtk_label_set_text_with_mnemonic(GTK_LABEL(label), caption.c_str());
        gtk_label_set_mnemonic_widget(GTK_LABEL(label), tab);
    }
    return true;
}

// A list that gets the focus takes its first entry unless its cursor stands somewhere, and the
// cursor selects where it is put.
void keepUnchosen(wxWindow& list) {
    if (!GTK_IS_BIN(list.GetHandle())) return;
    GtkWidget* inside = gtk_bin_get_child(GTK_BIN(list.GetHandle()));
    if (inside == nullptr || !GTK_IS_TREE_VIEW(inside)) return;
    GtkTreePath* first = gtk_tree_path_new_first();
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(inside), first, nullptr, FALSE);
    gtk_tree_path_free(first);
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(GTK_TREE_VIEW(inside)));
}

void shortenEntries(wxWindow& dropDown) {
    if (!GTK_IS_CELL_LAYOUT(dropDown.GetHandle())) return;
    GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(dropDown.GetHandle()));
    for (GList* cell = cells; cell != nullptr; cell = cell->next) {
        if (!GTK_IS_CELL_RENDERER_TEXT(cell->data)) continue;
        g_object_set(cell->data, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    }
    g_list_free(cells);
}

// No desktop asks its programs here whether the session may end.
void giveReasonToWait(const wxWindow&, const std::string&) {}

void withdrawReasonToWait(const wxWindow&) {}

}  // namespace coffrelune
