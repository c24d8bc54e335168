#include "platform/long_lists.h"

#include <algorithm>

namespace coffrelune {

void TextLog::append(std::string_view text) {
    std::size_t start = 0;
    while (true) {
        std::size_t end = text.find("\r\n", start);
        starts_.push_back(text_.size());
        text_.append(text.substr(start, end - start)).append("\r\n");
        if (wanted_ && wanted_(line(starts_.size() - 1))) matching_.push_back(starts_.size() - 1);
        if (end == std::string_view::npos) break;
        start = end + 2;
    }
    changed();
}

void TextLog::clear() {
    ++generation_;
    text_.clear();
    starts_.clear();
    matching_.clear();
    select({});
    changed();
}

void TextLog::showOnly(Test wanted) {
    ++generation_;
    wanted_ = std::move(wanted);
    matching_.clear();
    for (std::size_t i = 0; wanted_ && i < starts_.size(); ++i) {
        if (wanted_(line(i))) matching_.push_back(i);
    }
    select({});
    changed();
}

void TextLog::pick(std::vector<std::size_t> shown) {
    if (enabled() && visible()) select(std::move(shown));
}

void TextLog::select(std::vector<std::size_t> shown) {
    if (shown == selection_) return;
    selection_ = std::move(shown);
    if (onPick) onPick();
}

std::string_view TextLog::line(std::size_t index) const {
    const std::size_t end = index + 1 < starts_.size() ? starts_[index + 1] : text_.size();
    return std::string_view(text_).substr(starts_[index], end - starts_[index] - 2);
}

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
