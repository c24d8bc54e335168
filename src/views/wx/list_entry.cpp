#include "views/wx/list_entry.h"

#include <utility>

namespace coffrelune {

void enterByKey(wxWindow& list, std::function<bool()> hasSelection,
                std::function<void()> selectFirst) {
    list.Bind(wxEVT_KEY_DOWN, [hasSelection = std::move(hasSelection),
                               selectFirst = std::move(selectFirst)](wxKeyEvent& event) {
        const int key = event.GetKeyCode();
        const bool enters = key == WXK_DOWN || key == WXK_HOME || key == WXK_SPACE;
        if (enters && !event.HasAnyModifiers() && !hasSelection()) {
            selectFirst();
        } else {
            event.Skip();
        }
    });
}

}  // namespace coffrelune
