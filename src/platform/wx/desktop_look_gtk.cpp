#include <gtk/gtk.h>

#include "platform/wx/desktop_look.h"

namespace coffrelune {

// Menus show the same pictures as the toolbar, so that one is learnt from the other.
void adaptDesktopLook() {
    g_object_set(gtk_settings_get_default(), "gtk-menu-images", TRUE, nullptr);
}

}  // namespace coffrelune
