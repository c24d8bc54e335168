#pragma once

#include <wx/window.h>

#include <functional>

namespace coffrelune {

/// Where the user enters a list of which nothing is selected: Down, Home and Space choose its first
/// entry, which the toolkit would pass over.
void enterByKey(wxWindow& list, std::function<bool()> hasSelection,
                std::function<void()> selectFirst);

}  // namespace coffrelune
