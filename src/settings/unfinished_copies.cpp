#include "settings/unfinished_copies.h"

#include <algorithm>

#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

const std::string section = "Position";

// A value of the settings is read up to this many characters: of a longer mark its beginning
// counts, which marks a copy too many rather than none.
constexpr std::size_t longestValue = 1023;

auto sameAs(const std::string& tree) {
    return [path = withoutTrailingBackslash(tree)](const std::string& marked) {
        const bool cut = marked.size() >= longestValue && path.size() > marked.size();
        return equalIgnoringCase(marked, cut ? path.substr(0, marked.size()) : path);
    };
}

}  // namespace

bool UnfinishedCopies::hold(const std::string& tree) const {
    const std::vector<std::string> all = marked();
    return std::any_of(all.begin(), all.end(), sameAs(tree));
}

Status UnfinishedCopies::add(const std::string& tree) {
    const std::vector<std::string> all = marked();
    if (std::any_of(all.begin(), all.end(), sameAs(tree))) return {};
    return system_.WriteSetting(section, key(all.size() + 1),
                                QuoteValue(withoutTrailingBackslash(tree)));
}

// The last one takes the place of the one that goes, before its own place is cleared: whatever
// stops the program in between, no mark is lost.
void UnfinishedCopies::remove(const std::string& tree) {
    const std::vector<std::string> all = marked();
    const auto found = std::find_if(all.begin(), all.end(), sameAs(tree));
    if (found == all.end()) return;
    const auto number = static_cast<std::size_t>(found - all.begin()) + 1;
    if (number < all.size()) {
        (void)system_.WriteSetting(section, key(number), QuoteValue(all.back()));
    }
    (void)system_.WriteSetting(section, key(all.size()), "");
}

// The old place keeps its mark: it may be that of another disk, left as it was.
void UnfinishedCopies::follow(const std::string& from, const std::string& to) {
    // What cannot be stored is told by the settings themselves.
    if (hold(from)) (void)add(to);
}

std::string UnfinishedCopies::key(std::size_t number) const {
    const char* name = kind_ == Kind::copies ? "CopieIncomplete" : "RestaurationIncomplete";
    return name + std::to_string(number);
}

std::vector<std::string> UnfinishedCopies::marked() const {
    std::vector<std::string> all;
    while (true) {
        std::string copy = system_.ReadSetting(section, key(all.size() + 1));
        if (copy.empty()) return all;
        all.push_back(std::move(copy));
    }
}

}  // namespace coffrelune
