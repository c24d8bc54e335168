#include "platform/wx/session_block.h"

namespace coffrelune {

// No desktop asks its programs here whether the session may end.
void giveReasonToWait(const wxWindow&, const std::string&) {}

void withdrawReasonToWait(const wxWindow&) {}

}  // namespace coffrelune
