#pragma once

#include <string>
#include <vector>

namespace coffrelune {

/// How wide a text is in a window's font.
class TextMeasure {
  public:
    virtual ~TextMeasure() = default;

    /// In pixels, 0 for an empty text.
    virtual int width(const std::string& text) = 0;
};

/// A path as it fits into `width` pixels: itself when it fits, else its last component and as much
/// of its beginning as there is room for, with "..." between. A last component that is too wide by
/// itself shows its end after "..."; "..." is the least that is ever shown.
std::string shortenedPath(TextMeasure& measure, const std::string& path, int width);

/// How far a list scrolls to the side, in pixels: its widest entry and the vertical scroll bar that
/// may stand before it.
int listWidth(TextMeasure& measure, const std::vector<std::string>& entries, int scrollBarWidth);

}  // namespace coffrelune
