#include "views/wx/scrolling.h"

#include <wx/scrolwin.h>

namespace coffrelune {
namespace {

// How far an edge has to move for the range to lie inside the room; 0 when it does.
int distance(int begin, int length, int room) {
    if (begin < 0 || length > room) return begin;
    return begin + length > room ? begin + length - room : 0;
}

// In whole scroll steps, away from zero.
int steps(int pixels, int step) {
    if (step == 0) return 0;
    return pixels < 0 ? (pixels - step + 1) / step : (pixels + step - 1) / step;
}

void show(wxScrolledWindow& window, const wxWindow& child) {
    const wxPoint place = window.ScreenToClient(child.GetScreenPosition());
    const wxSize room = window.GetClientSize();
    wxPoint step;
    window.GetScrollPixelsPerUnit(&step.x, &step.y);
    const int right = steps(distance(place.x, child.GetSize().x, room.x), step.x);
    const int down = steps(distance(place.y, child.GetSize().y, room.y), step.y);
    if (right != 0 || down != 0) window.Scroll(window.GetViewStart() + wxPoint(right, down));
}

}  // namespace

void followFocus(wxScrolledWindow& window) {
    window.Bind(wxEVT_CHILD_FOCUS, [&window](wxChildFocusEvent& event) {
        event.Skip();
        wxWindow* focused = wxWindow::FindFocus();
        if (focused == nullptr || focused == &window || !window.IsDescendant(focused)) return;
        show(window, *focused);
    });
}

}  // namespace coffrelune
