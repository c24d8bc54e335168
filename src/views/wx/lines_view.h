#pragma once

#include <wx/scrolwin.h>

#include <array>
#include <vector>

#include "mainwindow/line_rows.h"
#include "views/wx/peer.h"

namespace coffrelune {

/// The rows of the main window. They scroll when the screen is too low for all of them.
class LinesView final : public wxScrolledWindow {
  public:
    LinesView(wxWindow* parent, ViewContext& context, LineRows& lines);

    /// Rows have come or gone.
    void rebuild();
    /// The focus goes to a label, as when its line has been moved.
    void focus(int row, LineSide side);
    /// Height of all rows, and of those that are seen at least, in pixels.
    int wholeHeight() const;
    int leastHeight() const;

  private:
    void addHeadings(wxSizer& grid);
    int shownRows() const;
    void addRow(wxSizer& grid, int index);

    LineRows& lines_;
    std::vector<std::array<wxWindow*, 2>> labels_;  // by row: left, right
    Peers peers_;
};

}  // namespace coffrelune
