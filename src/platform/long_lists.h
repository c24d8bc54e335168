#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

/// A text that only grows, line by line, and may reach a million lines: appending is O(1), memory
/// is that of the text and one or two offsets a line. A peer shows it as a virtual list.
class TextLog : public Control {
  public:
    /// Appends `text` (of one or several lines) and a line end.
    void append(std::string_view text);
    void clear();

    /// Raised by each clear(): other lines may stand where a peer has shown some.
    std::size_t generation() const { return generation_; }
    std::size_t lineCount() const { return starts_.size(); }
    std::string_view line(std::size_t index) const;    // without its line end
    const std::string& text() const { return text_; }  // every line ended by CR LF

    /// Only the lines that are wanted are shown from here on, those that come later included; null:
    /// all. Raises generation().
    using Test = std::function<bool(std::string_view line)>;
    void showOnly(Test wanted);
    std::size_t shownCount() const { return wanted_ ? matching_.size() : starts_.size(); }
    std::string_view shownLine(std::size_t shown) const {
        return line(wanted_ ? matching_[shown] : shown);
    }

    /// The user has selected these of the lines that are shown, and no others.
    void pick(std::vector<std::size_t> shown);
    const std::vector<std::size_t>& selection() const { return selection_; }
    std::function<void()> onPick;

  private:
    void select(std::vector<std::size_t> shown);

    std::string text_;
    std::vector<std::size_t> starts_;
    std::size_t generation_ = 0;
    Test wanted_;
    std::vector<std::size_t> matching_;  // the lines that are wanted; unused without wanted_
    std::vector<std::size_t> selection_;
};

/// A list with columns and one picture a row; -1 as no selection.
class ReportList : public Control {
  public:
    struct Column {
        std::string caption;
        int width;  // twips, 15 to a pixel
    };
    struct Row {
        std::string image;  // one of images(), or empty
        std::vector<std::string> cells;
    };

    void addColumn(std::string caption, int width);
    void addRow(Row row);

    const std::vector<Column>& columns() const { return columns_; }
    const std::vector<Row>& rows() const { return rows_; }
    /// The pictures of the rows by name, each once, in the order in which they first appear.
    const std::vector<std::string>& images() const { return images_; }
    int selection() const { return selection_; }

    /// The user selects a row (-1: none), or double-clicks it.
    void pick(int row);
    void doubleClick(int row);

    std::function<void()> onPick;
    std::function<void()> onDoubleClick;

  private:
    std::vector<Column> columns_;
    std::vector<Row> rows_;
    std::vector<std::string> images_;
    int selection_ = -1;
};

}  // namespace coffrelune
