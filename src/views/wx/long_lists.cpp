#include "views/wx/long_lists.h"

#include <wx/settings.h>

#include <algorithm>

#include "views/wx/accessible.h"
#include "views/wx/desktop.h"
#include "views/wx/list_entry.h"
#include "views/wx/pictures.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr int iconSize = 16;

class LogModel final : public wxDataViewVirtualListModel {
  public:
    explicit LogModel(const TextLog& log) : log_(log) {}

    unsigned int GetColumnCount() const override { return 1; }
    wxString GetColumnType(unsigned int) const override { return "string"; }
    void GetValueByRow(wxVariant& value, unsigned int row, unsigned int) const override {
        // The list may ask for a line that has just been cleared.
        value = row < log_.shownCount() ? toWx(std::string(log_.shownLine(row))) : wxString();
    }
    bool SetValueByRow(const wxVariant&, unsigned int, unsigned int) override { return false; }

  private:
    const TextLog& log_;
};

class LogPeer final : public Peer {
  public:
    LogPeer(ViewContext& context, TextLog& log, wxDataViewCtrl& widget, Follow follow)
        : Peer(context, log, widget), log_(log), widget_(widget), follow_(follow) {
        model_ = new LogModel(log);
        widget.AssociateModel(model_);
        model_->DecRef();
        widget.Bind(wxEVT_DATAVIEW_SELECTION_CHANGED,
                    [this](wxDataViewEvent&) { tellSelection(); });
        widget.Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
            if (event.GetKeyCode() == 'C' && event.ControlDown()) {
                copySelection();
            } else {
                event.Skip();
            }
        });
    }

  private:
    // Up to this many new lines are told one by one; more are cheaper as a new list.
    static constexpr std::size_t fewLines = 2'000;

    void show() override {
        const std::size_t count = log_.shownCount();
        const bool others = generation_ != log_.generation();
        generation_ = log_.generation();
        if (others) longest_ = 0;
        widen(others ? 0 : shown_, count);
        if (!others && count > shown_ && count - shown_ <= fewLines) {
            while (shown_ < count) {
                model_->RowAppended();
                ++shown_;
            }
        } else if (others || count != shown_) {
            model_->Reset(static_cast<unsigned int>(count));
            shown_ = count;
        } else {
            return;
        }
        if (follow_ == Follow::end && count > 0)
            widget_.EnsureVisible(model_->GetItem(static_cast<unsigned int>(count - 1)));
    }

    // The column is about as wide as its longest line (the one of the most bytes), so that every
    // path can be scrolled into view.
    void widen(std::size_t from, std::size_t to) {
        std::size_t longest = longest_;
        std::string_view widest;
        for (std::size_t i = from; i < to; ++i) {
            if (log_.shownLine(i).size() <= longest) continue;
            widest = log_.shownLine(i);
            longest = widest.size();
        }
        if (longest == longest_) return;
        longest_ = longest;
        const int room = widget_.FromDIP(40);
        const int width = widget_.GetTextExtent(toWx(std::string(widest))).x + room;
        wxDataViewColumn* column = widget_.GetColumn(0);
        if (column->GetWidth() < width) column->SetWidth(width);
    }

    void tellSelection() {
        wxDataViewItemArray items;
        widget_.GetSelections(items);
        std::vector<std::size_t> rows;
        for (const wxDataViewItem& item : items) {
            const unsigned int row = model_->GetRow(item);
            if (row < log_.shownCount()) rows.push_back(row);
        }
        std::sort(rows.begin(), rows.end());
        log_.pick(std::move(rows));
    }

    void copySelection() {
        wxString text;
        for (const std::size_t row : log_.selection())
            text += toWx(std::string(log_.shownLine(row))) + "\n";
        if (!text.empty()) copyToClipboard(text);
    }

    TextLog& log_;
    wxDataViewCtrl& widget_;
    Follow follow_;
    LogModel* model_ = nullptr;  // the widget's
    std::size_t shown_ = 0;
    std::size_t generation_ = 0;
    std::size_t longest_ = 0;  // bytes
};

class ReportPeer final : public Peer {
  public:
    ReportPeer(ViewContext& context, ReportList& list, wxDataViewListCtrl& widget)
        : Peer(context, list, widget), list_(list), widget_(widget) {
        widget.Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent&) {
            if (!showing_) list_.pick(widget_.GetSelectedRow());
        });
        enterByKey(
            widget, [&list] { return list.selection() >= 0 || list.rows().empty(); },
            [&list] { list.pick(0); });
        widget.Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent& event) {
            list_.doubleClick(widget_.ItemToRow(event.GetItem()));
        });
    }

  private:
    void show() override {
        showing_ = true;
        while (shownColumns_ < list_.columns().size()) addColumn(list_.columns()[shownColumns_++]);
        if (shownRows_ < list_.rows().size()) {
            while (shownRows_ < list_.rows().size()) addRow(list_.rows()[shownRows_++]);
            keepUnchosen(widget_);
        }
        showSelection();
        showing_ = false;
    }

    void showSelection() {
        if (widget_.GetSelectedRow() == list_.selection()) return;
        if (list_.selection() < 0) {
            widget_.UnselectAll();
        } else {
            widget_.SelectRow(static_cast<unsigned int>(list_.selection()));
        }
    }

    void addColumn(const ReportList::Column& column) {
        constexpr int twipsPerPixel = 15;
        const int asked = sizeForText(widget_, wxSize(column.width / twipsPerPixel, 0)).x;
        // A heading is bold on some systems, and the first cell has a picture beside its text.
        const int heading = widget_.GetTextExtent(toWx(column.caption)).x * 5 / 4;
        const int width = std::max(asked, heading + widget_.FromDIP(iconSize));
        if (widget_.GetColumnCount() == 0) {
            widget_.AppendIconTextColumn(toWx(column.caption), wxDATAVIEW_CELL_INERT, width);
        } else {
            widget_.AppendTextColumn(toWx(column.caption), wxDATAVIEW_CELL_INERT, width);
        }
    }

    void addRow(const ReportList::Row& row) {
        wxVector<wxVariant> cells;
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            wxVariant cell;
            if (i == 0) {
                cell << wxDataViewIconText(toWx(row.cells[i]),
                                           context().pictures.find(row.image, iconSize));
            } else {
                cell = toWx(row.cells[i]);
            }
            cells.push_back(cell);
        }
        widget_.AppendItem(cells);
    }

    ReportList& list_;
    wxDataViewListCtrl& widget_;
    std::size_t shownColumns_ = 0;
    std::size_t shownRows_ = 0;
    bool showing_ = false;  // what the widget selects meanwhile nobody has picked
};

}  // namespace

wxDataViewCtrl* makeLog(Peers& peers, wxWindow* parent, TextLog& log, const std::string& name,
                        Follow follow) {
    auto* widget = new wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                      wxDV_MULTIPLE | wxDV_NO_HEADER);
    // The style has no wxDV_VARIABLE_LINE_HEIGHT and the column no automatic width: either would
    // make the toolkit measure every line.
    widget->AppendColumn(new wxDataViewColumn(
        wxEmptyString, new wxDataViewTextRenderer("string", wxDATAVIEW_CELL_INERT), 0,
        parent->FromDIP(200), wxALIGN_LEFT, 0));
    nameForReaders(*widget, name);
    peers.add<LogPeer>(log, *widget, follow);
    return widget;
}

wxDataViewListCtrl* makeReport(Peers& peers, wxWindow* parent, ReportList& list,
                               const std::string& name) {
    auto* widget = new wxDataViewListCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                          wxDV_SINGLE | wxDV_ROW_LINES);
    nameForReaders(*widget, name);
    peers.add<ReportPeer>(list, *widget);
    return widget;
}

}  // namespace coffrelune
