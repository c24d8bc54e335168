#include <windows.h>
// After the above.
#include <wx/window.h>

#include "platform/wx/session_block.h"
#include "platform/wx/text.h"

namespace coffrelune {

void giveReasonToWait(const wxWindow& main, const std::string& reason) {
    ShutdownBlockReasonCreate(main.GetHWND(), toWx(reason).wc_str());
}

void withdrawReasonToWait(const wxWindow& main) {
    ShutdownBlockReasonDestroy(main.GetHWND());
}

}  // namespace coffrelune
