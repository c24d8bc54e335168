#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

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
