#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls.h"

namespace coffrelune {

/// A text that only grows, line by line, and may reach a million lines: appending is O(1), memory
/// is that of the text and one offset a line. A peer shows it as a virtual list.
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

  private:
    std::string text_;
    std::vector<std::size_t> starts_;
    std::size_t generation_ = 0;
};

}  // namespace coffrelune
