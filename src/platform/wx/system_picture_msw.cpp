#include <wx/icon.h>

#include "platform/win32/desktop/shell_icon.h"
#include "platform/wx/system_picture.h"

namespace coffrelune {

wxBitmapBundle systemPicture(const std::string& name) {
    void* handle = shellIcon(name);
    if (handle == nullptr) return {};
    // The icon takes the handle over.
    wxIcon icon;
    icon.CreateFromHICON(static_cast<WXHICON>(handle));
    wxBitmap bitmap;
    bitmap.CopyFromIcon(icon);
    return wxBitmapBundle::FromBitmap(bitmap);
}

}  // namespace coffrelune
