#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "platform/content_hash.h"

namespace coffrelune {

/// What a file of a copy held when it was read.
struct HashedFile {
    std::string hash;  // 16 hexadecimal digits
    std::uint64_t size = 0;
    std::uint64_t lastWrite = 0;  // 100 ns since 1601-01-01

    bool operator==(const HashedFile&) const = default;
};

/// The files of one line's copy, by their path below its root.
struct HashedCopy {
    std::string root;
    std::map<std::string, HashedFile> files;

    bool operator==(const HashedCopy&) const = default;
};

/// What the copies of a configuration held, by the index of their line.
using HashList = std::map<int, HashedCopy>;

/// How such a file begins, whichever its version.
inline constexpr const char* hashListMark = "Coffrelune, empreintes ";

/// UTF-8 lines; what a name holds of line ends and other control characters is written "%0A".
std::string hashListText(const HashList& list);

/// Nothing for a text that is no list, or of which something is missing.
std::optional<HashList> readHashList(const std::string& text);

/// What a run does with such a list.
struct HashWork {
    ContentHash& hash;
    HashList& list;
    /// The copies are held against the list; else the list is brought up to date.
    bool checks = false;
    /// Files of copies, in full, that nobody can vouch for: what the list says of them stays.
    std::set<std::string> suspects;
};

}  // namespace coffrelune
