#pragma once

#include <wx/dataview.h>

#include "platform/long_lists.h"
#include "views/wx/peer.h"

namespace coffrelune {

enum class Follow { no, end };

/// A list of which only the visible lines are ever asked for: a million of them scroll. `name`:
/// what readers say for it. `follow`: whether it stays at its last line while it grows. Ctrl+C
/// copies the selected lines.
wxDataViewCtrl* makeLog(Peers& peers, wxWindow* parent, TextLog& log, const std::string& name,
                        Follow follow);

wxDataViewListCtrl* makeReport(Peers& peers, wxWindow* parent, ReportList& list,
                               const std::string& name);

}  // namespace coffrelune
