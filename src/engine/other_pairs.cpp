// Pairs whose copies lie around the copy of a line, or in it: a file of both is the copy of
// whichever original was saved last.
#include <algorithm>

#include "engine/line_trees.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// What lies in the original of `whole` at the place `rest` is the original of `part`.
bool isPartOf(const Certificate& part, const Certificate& whole, const std::string& rest) {
    return part.original == joinPath(whole.original, rest) ||
           (!part.volume.empty() && part.volume == whole.volume &&
            part.pathOnVolume == joinPath(whole.pathOnVolume, rest));
}

}  // namespace

// Unless the other original is there and has, for certain, no file of that name.
bool LineTrees::mayBeOfAnother(const std::string& directory, const std::string& name) {
    const OtherOriginals& others = othersIn(withoutTrailingBackslash(directory));
    return std::any_of(others.begin(), others.end(), [&](const OtherOriginal& other) {
        FileId id;
        if (other.root.empty() || !files_.identify(other.root, id).ok()) return true;
        FileEntry found;
        const std::string path = joinPath(other.directory, name);
        return !files_.lookUp(path, LinkRule::refuse, found).saysAbsent();
    });
}

const LineTrees::OtherOriginals& LineTrees::othersIn(const std::string& directory) {
    const auto known = others_.find(directory);
    if (known != others_.end()) return known->second;
    OtherOriginals others;
    if (directory.size() <= withoutTrailingBackslash(roots().copy()).size()) {
        others = othersAround();
    } else {
        const SplitPath split = splitPath(directory);
        others = othersThere(directory);
        for (const OtherOriginal& above : othersIn(withoutTrailingBackslash(split.parent))) {
            others.push_back({above.root, joinPath(above.directory, split.last)});
        }
    }
    return others_[directory] = std::move(others);
}

// What the copy is a copy of: this line's original, and what it was a copy of elsewhere.
std::vector<Certificate> LineTrees::knownOriginals() const {
    std::vector<Certificate> known;
    for (const DirectoryMarks::Named& one : copyMarks_.certificates) {
        known.push_back(one.certificate);
    }
    if (originalTree() != nullptr && copyTree() != nullptr) known.push_back(current());
    return known;
}

LineTrees::OtherOriginals LineTrees::othersAround() const {
    OtherOriginals others;
    const std::string copy = files_.resolve(roots().copy());
    const std::vector<Certificate> known = knownOriginals();
    for (const std::string& place : ancestorsOf(copy)) {
        DirectoryMarks marks;
        // A directory above that may not be listed belongs to somebody else.
        if (!readMarks(files_, place, marks).ok()) continue;
        const std::string rest = copy.substr(withoutTrailingBackslash(place).size());
        for (const auto& [name, whole] : marks.certificates) {
            const auto isPart = [&, &whole = whole](const Certificate& part) {
                return isPartOf(part, whole, rest);
            };
            if (std::any_of(known.begin(), known.end(), isPart)) continue;
            others.push_back({whole.original, joinPath(whole.original, rest)});
        }
        if (!marks.unreadable.empty()) others.emplace_back();
    }
    return others;
}

// Below the root of the copy.
LineTrees::OtherOriginals LineTrees::othersThere(const std::string& directory) const {
    OtherOriginals others;
    DirectoryMarks marks;
    const Status read = readMarks(files_, directory, marks);
    if (!read.ok() || !marks.unreadable.empty()) others.emplace_back();
    if (marks.certificates.empty()) return others;
    const std::string rest = directory.substr(withoutTrailingBackslash(roots().copy()).size());
    const std::vector<Certificate> known = knownOriginals();
    for (const auto& [name, part] : marks.certificates) {
        const auto isWhole = [&, &part = part](const Certificate& whole) {
            return isPartOf(part, whole, rest);
        };
        if (std::any_of(known.begin(), known.end(), isWhole)) continue;
        others.push_back({part.original, part.original});
    }
    return others;
}

}  // namespace coffrelune
