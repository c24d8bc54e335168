#include "platform/text_log.h"

namespace coffrelune {

void TextLog::append(std::string_view text) {
    std::size_t start = 0;
    while (true) {
        std::size_t end = text.find("\r\n", start);
        starts_.push_back(text_.size());
        text_.append(text.substr(start, end - start)).append("\r\n");
        if (end == std::string_view::npos) break;
        start = end + 2;
    }
    changed();
}

void TextLog::clear() {
    ++generation_;
    text_.clear();
    starts_.clear();
    changed();
}

std::string_view TextLog::line(std::size_t index) const {
    const std::size_t end = index + 1 < starts_.size() ? starts_[index + 1] : text_.size();
    return std::string_view(text_).substr(starts_[index], end - starts_[index] - 2);
}

}  // namespace coffrelune
