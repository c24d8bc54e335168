#pragma once

#include <string>

class wxWindow;

namespace coffrelune {

/// From here on the system tells the user this reason when the session is about to end and the
/// program refuses. It keeps nothing from ending: that is the answer to the system's question.
void giveReasonToWait(const wxWindow& main, const std::string& reason);

/// There is none any more.
void withdrawReasonToWait(const wxWindow& main);

}  // namespace coffrelune
