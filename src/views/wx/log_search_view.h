#pragma once

#include <wx/sizer.h>

#include "operation/log_search.h"
#include "views/wx/peer.h"

namespace coffrelune {

/// One row: the filter, and a button for each thing to do with the lines.
wxSizer* makeLogSearch(Peers& peers, wxWindow* parent, LogSearch& search);

}  // namespace coffrelune
