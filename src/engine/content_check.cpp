#include "engine/content_check.h"

#include <algorithm>
#include <vector>

namespace coffrelune {

Status ContentCheck::compare(const std::string& source, const std::string& target, LinkRule links,
                             bool& same) {
    constexpr std::size_t chunk = std::size_t{256} << 10;
    same = false;
    std::unique_ptr<Content> one;
    std::unique_ptr<Content> other;
    ContentReader& contents = *run_.switches.contents;
    Status opened = contents.open(source, links, one);
    if (opened.ok()) opened = contents.open(target, links, other);
    if (!opened.ok()) return opened;
    std::vector<char> left(chunk);
    std::vector<char> right(chunk);
    while (!run_.stopped()) {
        std::size_t leftLength = 0;
        std::size_t rightLength = 0;
        Status read = one->read(left, leftLength);
        if (read.ok()) read = other->read(right, rightLength);
        if (!read.ok()) return read;
        if (leftLength != rightLength ||
            !std::equal(left.begin(), left.begin() + static_cast<std::ptrdiff_t>(leftLength),
                        right.begin())) {
            return {};
        }
        if (leftLength < chunk) break;
        run_.display.runPendingEvents();
    }
    same = true;
    return {};
}

}  // namespace coffrelune
