// Pairs whose copies lie around the copy of a line, or in it: a file of both is the copy of
// whichever original was saved last.
#include <algorithm>

#include "engine/line_trees.h"
#include "system/paths.h"

namespace coffrelune {

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

// Another certificate of the same original is no other pair's.
LineTrees::OtherOriginals LineTrees::othersAround() const {
    OtherOriginals others;
    const std::string copy = files_.resolve(roots().copy());
    for (const std::string& place : ancestorsOf(copy)) {
        DirectoryMarks marks;
        // A directory above that may not be listed belongs to somebody else.
        if (!readMarks(files_, place, marks).ok()) continue;
        const std::string rest = copy.substr(withoutTrailingBackslash(place).size());
        for (const DirectoryMarks::Named& one : marks.certificates) {
            Certificate part = one.certificate;
            part.original = joinPath(part.original, rest);
            part.pathOnVolume = joinPath(part.pathOnVolume, rest);
            if (!isOwn(part)) others.push_back({one.certificate.original, part.original});
        }
        if (!marks.unreadable.empty()) others.emplace_back();
    }
    return others;
}

// Below the root of the copy.
LineTrees::OtherOriginals LineTrees::othersThere(const std::string& directory) const {
    DirectoryMarks marks;
    const Status read = readMarks(files_, directory, marks);
    OtherOriginals others;
    if (!read.ok() || !marks.unreadable.empty()) others.emplace_back();
    const std::string rest = directory.substr(withoutTrailingBackslash(roots().copy()).size());
    const HeldTree* original = originalTree();
    for (const DirectoryMarks::Named& one : marks.certificates) {
        const Certificate& certificate = one.certificate;
        const bool isPart = certificate.original == joinPath(originalPath_, rest) ||
                            (original != nullptr && !certificate.volume.empty() &&
                             certificate.volume == original->place().volume &&
                             certificate.pathOnVolume == joinPath(original->place().path, rest));
        if (!isPart) others.push_back({certificate.original, certificate.original});
    }
    return others;
}

}  // namespace coffrelune
