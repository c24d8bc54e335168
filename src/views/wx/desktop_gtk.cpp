#include <gtk/gtk.h>
#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/dirdlg.h>
#include <wx/filectrl.h>
#include <wx/filename.h>
#include <wx/sizer.h>

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

}  // namespace

// Menus show the same pictures as the toolbar, so that one is learnt from the other.
void adaptDesktopLook() {
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
        shown->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) {
            accept(gtk_file_chooser_get_current_folder(chooser()));
        });
        selected->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { acceptSelection(); });
        files_->Bind(wxEVT_FILECTRL_FILEACTIVATED, [this](wxFileCtrlEvent&) { acceptSelection(); });
    }

    const std::string& chosen() const { return chosen_; }

  private:
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

// No desktop asks its programs here whether the session may end.
void giveReasonToWait(const wxWindow&, const std::string&) {}

void withdrawReasonToWait(const wxWindow&) {}

}  // namespace coffrelune
