#include "platform/wx/desktop_look.h"

namespace coffrelune {

// Menus show their pictures there anyway.
void adaptDesktopLook() {}

}  // namespace coffrelune
