#include "platform/wx/system_picture.h"

namespace coffrelune {

// The drives' names are those that desktops use, and the program's own drawings have them too: they
// go with the others, whatever theme is set.
wxBitmapBundle systemPicture(const std::string&) {
    return {};
}

}  // namespace coffrelune
