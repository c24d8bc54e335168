#include <wx/window.h>

#include "platform/win32/desktop/folder_chooser.h"
#include "platform/wx/folder_chooser.h"

namespace coffrelune {

std::string chooseNativeFolder(wxWindow* parent, bool includeFiles, const std::string& prompt,
                               const std::string& start) {
    void* owner = parent == nullptr ? nullptr : static_cast<void*>(parent->GetHandle());
    return chooseShellFolder(owner, includeFiles, prompt, start);
}

}  // namespace coffrelune
