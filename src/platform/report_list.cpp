#include "platform/report_list.h"

#include <algorithm>

namespace coffrelune {

void ReportList::addColumn(std::string caption, int width) {
    columns_.push_back({std::move(caption), width});
    changed();
}

void ReportList::addRow(Row row) {
    if (!row.image.empty() && std::find(images_.begin(), images_.end(), row.image) == images_.end())
        images_.push_back(row.image);
    rows_.push_back(std::move(row));
    changed();
}

void ReportList::pick(int row) {
    if (!enabled() || !visible() || row >= static_cast<int>(rows_.size())) return;
    if (row != selection_) {
        selection_ = std::max(row, -1);
        changed();
    }
    if (onPick) onPick();
}

void ReportList::doubleClick(int row) {
    pick(row);
    if (enabled() && visible() && onDoubleClick) onDoubleClick();
}

}  // namespace coffrelune
