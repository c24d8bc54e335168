#include <gtk/gtk.h>

#include "platform/wx/desktop_look.h"

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

}  // namespace coffrelune
