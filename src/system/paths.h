#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace coffrelune {

/// The path followed by "\" unless its last character already is one. An empty path gives "\".
std::string withTrailingBackslash(std::string path);

/// The path without one trailing "\".
std::string withoutTrailingBackslash(std::string path);

/// A path taken apart: one trailing "\" is dropped first; parent is the text up to and including
/// the last "\" (the whole text when there is none), last is the rest.
struct SplitPath {
    std::string parent;
    std::string last;
};
SplitPath splitPath(const std::string& path);

/// Joins with exactly one backslash between the two.
std::string joinPath(const std::string& directory, std::string_view name);

/// A drive root in full: a letter and ":\", three characters.
bool isDriveRoot(std::string_view path);

/// The text before the last "."; unchanged when there is none.
std::string withoutExtension(const std::string& fileName);

/// A file name made of any text: each of < > | \ / * : ? and the double quote is replaced by
/// `replacement`, then blanks at both ends are trimmed.
std::string cleanFileName(std::string text, std::string_view replacement);

/// The path in a text that another program offers by drag and drop or through the clipboard: one
/// line end after it and one pair of quotes (" or ') round it are taken off. Of addresses
/// "file:///tmp/a%20b" of this machine, the path of the first one, as the system writes it
/// ("/tmp/a b"). Any other address stays as it is.
std::string pathOfDroppedText(const std::string& text);

}  // namespace coffrelune
