#include "views/wx/lines_view.h"

#include <wx/sizer.h>

#include <algorithm>

#include "views/wx/basic_widgets.h"
#include "views/wx/path_view.h"
#include "views/wx/scrolling.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr int pictureSize = 16;  // density-independent pixels
constexpr int twipsPerPixel = 15;
constexpr int between = 2;  // rows
constexpr int columns = 9;
constexpr int sourceColumn = 3;
constexpr int destinationColumn = 5;

}  // namespace

LinesView::LinesView(wxWindow* parent, ViewContext& context, LineRows& lines)
    : wxScrolledWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                       wxTAB_TRAVERSAL | wxVSCROLL),
      lines_(lines),
      peers_(context) {
    SetScrollRate(0, FromDIP(LineRows::rowPitch / twipsPerPixel));
    followFocus(*this);
    rebuild();
}

void LinesView::rebuild() {
    peers_.clear();
    labels_.clear();
    DestroyChildren();
    auto* grid = new wxFlexGridSizer(columns, FromDIP(between), FromDIP(6));
    grid->AddGrowableCol(sourceColumn);
    grid->AddGrowableCol(destinationColumn);
    addHeadings(*grid);
    for (int index = 0; index < shownRows(); ++index) addRow(*grid, index);
    SetSizer(grid);
    FitInside();
}

void LinesView::addHeadings(wxSizer& grid) {
    for (int column = 0; column < columns; ++column) {
        if (column == sourceColumn || column == destinationColumn) {
            grid.Add(plainText(this, column == sourceColumn ? "Source" : "Destination"));
        } else {
            grid.AddSpacer(0);
        }
    }
}

// A settings file may ask for thousands of lines. All that are in use are shown.
int LinesView::shownRows() const {
    constexpr int enough = 60;
    int shown = std::min(lines_.count(), enough);
    for (int index = shown; index < lines_.count(); ++index) {
        const LineRow& row = lines_.row(index);
        if (!row.LblS.path().empty() || !row.LblD.path().empty()) shown = index + 1;
    }
    return shown;
}

void LinesView::focus(int row, LineSide side) {
    const auto index = static_cast<std::size_t>(row);
    if (index >= labels_.size()) return;
    labels_[index][side == LineSide::left ? 0 : 1]->SetFocus();
}

int LinesView::wholeHeight() const {
    return GetSizer()->CalcMin().y;
}

// The heading and three rows: fewer would hardly show that there are more.
int LinesView::leastHeight() const {
    constexpr int rows = 3;
    const int pitch = FromDIP(LineRows::rowPitch / twipsPerPixel);
    return std::min(wholeHeight(), GetCharHeight() + rows * pitch + FromDIP(between));
}

void LinesView::addRow(wxSizer& grid, int index) {
    LineRow& row = lines_.row(index);
    const std::string number = std::to_string(index + 1);
    const auto middle = wxSizerFlags().CentreVertical();
    const auto kept = wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden();
    const int height = FromDIP(LineRows::rowPitch / twipsPerPixel);
    grid.Add(makePicture(peers_, this, row.Img, pictureSize), middle);
    grid.Add(makeText(peers_, this, row.NumLbl), middle);
    grid.Add(makeCheckBox(peers_, this, row.ChkS), middle);
    const auto wide = wxSizerFlags().CentreVertical().Expand();
    PathView* source = makePath(peers_, this, row.LblS, "Source " + number);
    grid.Add(source, wide);
    wxButton* chooseSource = makeIconButton(peers_, this, row.CmdS, "parcourir");
    grid.Add(chooseSource, middle);
    PathView* destination = makePath(peers_, this, row.LblD, "Destination " + number);
    grid.Add(destination, wide);
    wxButton* chooseDestination = makeIconButton(peers_, this, row.CmdD, "parcourir");
    grid.Add(chooseDestination, middle);
    wxButton* exclusions = makeButton(peers_, this, row.CmdEx);
    grid.Add(exclusions, middle);
    grid.Add(makePicture(peers_, this, row.ImgOk, pictureSize), kept);
    // A row is as high as the program's rows are; a theme's roomy buttons give way.
    const int inside = height - FromDIP(between);
    for (wxWindow* widget : std::initializer_list<wxWindow*>{source, chooseSource, destination,
                                                             chooseDestination, exclusions}) {
        widget->SetMinSize(wxSize(widget->GetBestSize().x, inside));
    }
    // Room for what it may say of exclusions made later.
    const int counted = exclusions->GetTextExtent("Exclusions (toutes)").x;
    const int around =
        exclusions->GetBestSize().x - exclusions->GetTextExtent(exclusions->GetLabel()).x;
    exclusions->SetMinSize(wxSize(counted + around, inside));
    labels_.push_back({source, destination});
    // A narrow window shortens the paths, which their tool tips tell in full.
    constexpr int least = 120;
    source->SetMinSize(wxSize(FromDIP(least), inside));
    destination->SetMinSize(wxSize(FromDIP(least), inside));
}

}  // namespace coffrelune
