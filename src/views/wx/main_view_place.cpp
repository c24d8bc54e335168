// Where the main window stands, and how what it holds shares its room.
#include <wx/display.h>
#include <wx/sizer.h>

#include <algorithm>

#include "views/wx/main_view.h"

namespace coffrelune {
namespace {

constexpr int twipsPerPixel = 15;

// The system's density, not the window's: a place lies on the desktop, and is the same for a window
// whichever screen it is on.
wxPoint placeOf(const WindowPlace& place) {
    return {wxWindow::FromDIP(place.left / twipsPerPixel, nullptr),
            wxWindow::FromDIP(place.top / twipsPerPixel, nullptr)};
}

// A length of the desktop in its pixels, and back in twips.
int pixelsOf(int twips) {
    return wxWindow::FromDIP(twips / twipsPerPixel, nullptr);
}

int twipsOf(int pixels) {
    return wxWindow::ToDIP(pixels, nullptr) * twipsPerPixel;
}

}  // namespace

// What the window's contents leave of its height is for the rows, up to all of them; below a few of
// them the whole page scrolls.
void MainView::shareHeight() {
    const int least = linesView_->leastHeight();
    linesView_->SetMinSize(wxSize(-1, least));
    const int left = page_->GetClientSize().y - page_->GetSizer()->CalcMin().y;
    const int whole = std::max(linesView_->wholeHeight(), least);
    linesView_->SetMinSize(wxSize(-1, std::clamp(least + left, least, whole)));
}

wxSize MainView::roomOnScreen() const {
    // What the system puts around a window is known only once it is on the screen.
    constexpr int sides = 8;
    constexpr int aboveAndBelow = 40;
    const wxSize area = wxDisplay(this).GetClientArea().GetSize();
    return area - FromDIP(wxSize(sides, aboveAndBelow));
}

// As high as all its rows and as wide as suits paths, but no larger than the screen; as large as
// the user has made it, once that has happened.
void MainView::fit() {
    constexpr int usualWidth = 960;
    constexpr int usualCharacters = 128;
    constexpr int leastHeight = 320;
    const wxSize room = roomOnScreen();
    linesView_->SetMinSize(wxSize(-1, linesView_->wholeHeight()));
    const wxSize best = page_->GetSizer()->CalcMin();
    SetMinClientSize({std::min(best.x, room.x), std::min(FromDIP(leastHeight), room.y)});
    const WindowPlace& place = form_.place;
    const bool chosen = place.width > 0;
    const int usual = std::max(FromDIP(usualWidth), GetCharWidth() * usualCharacters);
    const int width = IsShown() && fitted_.x > 0 ? GetClientSize().x : usual;
    wxSize size = chosen ? wxSize(pixelsOf(place.width), pixelsOf(place.height))
                         : wxSize(std::max(best.x, width), best.y);
    size.DecTo(room);
    SetClientSize(size);
    fitted_ = GetClientSize();
    Layout();
}

// Opens where it was; a place that no screen shows any more is brought back onto one.
void MainView::applyPlace() {
    const WindowPlace& place = form_.place;
    wxRect rect(placeOf(place), GetSize());
    int screen = wxDisplay::GetFromPoint(rect.GetTopLeft());
    if (screen == wxNOT_FOUND) screen = 0;
    const wxRect area = wxDisplay(static_cast<unsigned>(screen)).GetClientArea();
    rect.x = std::max(area.x, std::min(rect.x, area.GetRight() + 1 - rect.width));
    rect.y = std::max(area.y, std::min(rect.y, area.GetBottom() + 1 - rect.height));
    SetPosition(rect.GetTopLeft());
    if (place.state == WindowPlace::maximised) Maximize();
    if (place.state == WindowPlace::minimised) Iconize();
}

void MainView::rememberState() {
    if (!IsShown()) return;
    form_.place.state = IsIconized()    ? WindowPlace::minimised
                        : IsMaximized() ? WindowPlace::maximised
                                        : WindowPlace::normal;
}

// A maximised window keeps the place that it had before and will have again.
void MainView::rememberPlace() {
    rememberState();
    WindowPlace& place = form_.place;
    if (!IsShown() || place.state != WindowPlace::normal) return;
    place.left = twipsOf(GetPosition().x);
    place.top = twipsOf(GetPosition().y);
    // Only a size that is not the one that the program has given: that one follows the contents.
    if (GetClientSize() == fitted_) return;
    place.width = twipsOf(GetClientSize().x);
    place.height = twipsOf(GetClientSize().y);
}

}  // namespace coffrelune
