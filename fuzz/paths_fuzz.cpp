// Path helpers: a name, a path and a second path of any bytes.

#include "engine/certificate.h"
#include "engine/rules.h"
#include "feed.h"
#include "platform/characters.h"
#include "platform/names.h"
#include "platform/posix/mount_table.h"
#include "platform/posix/native_path.h"
#include "platform/posix/path_map.h"
#include "settings/encoding.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

void checkName(const std::string& name) {
    expect(toNativeName(toCoreName(name)) == name, "a file's name leads to the file again");
    std::string plain;
    expect(unescapeOctal(escapeOctal(name), plain) && plain == name, "octal there and back");
    expect(utf16le::decode(utf16le::encode(name)) == name, "UTF-16 there and back");
    expect(rawBytes(shownBytes(name)) == name, "shown bytes there and back");
    expect(unescapeCharacters(escapeCharacters(name, "|"), "|") == name, "escaped, and back");
    expect(unescapeCharacters(escapeCharacters(name, lineBreakers), lineBreakers) == name,
           "line ends escaped, and back");
    expect(escapeCharacters(name, lineBreakers).find_first_of(lineBreakers) == std::string::npos,
           "no line end stays in a value");
    const std::string clean = cleanFileName(name, "_");
    expect(clean.find_first_of("<>|\\/*:?\"") == std::string::npos, "a clean name is clean");
    expect(cleanFileName(clean, "_") == clean, "and stays as it is");
    expect(visibleControls(visibleControls(name)) == visibleControls(name), "shown once");
    expect(ProperCase(ProperCase(name)) == ProperCase(name), "cased once");
    expect(lowerCase(lowerCase(name)) == lowerCase(name), "lowered once");
    expect(equalIgnoringCase(name, lowerCase(name)), "equal but for case");
    expect(
        equalIgnoringCase(name, upperCase(name)) || lowerCase(upperCase(name)) != lowerCase(name),
        "compared by lower case");
    expect(firstCharacters(name, characterCount(name)) == name, "all its characters");
    const std::optional<OwnFile> kind = ownFileKind(name);
    expect(!kind || name.starts_with(".~coffrelune-"), "own names are the program's");
}

void checkPath(const std::string& path) {
    const std::string plain = inPlainSpelling(path);
    expect(inPlainSpelling(plain) == plain, "the plain spelling is plain");
    const SplitPath split = splitPath(path);
    expect(split.parent + split.last == withoutTrailingBackslash(path),
           "taken apart, nothing lost");
    expect(split.last.find('\\') == std::string::npos, "a name is one component");
    expect(withTrailingBackslash(path).ends_with('\\'), "ends with a backslash");
    expect(path.starts_with(withoutExtension(path)), "an extension is at the end");
    for (const std::string& ancestor : ancestorsOf(path)) {
        expect(path.starts_with(ancestor) && ancestor.size() < path.size(), "ancestors are above");
    }
}

bool escapes(const std::string& native) {
    return ('/' + native + '/').find("/../") != std::string::npos;
}

void checkMap(const std::string& path, const std::string& other) {
    const PathMap map({PathRoot::drive('C', "/"), PathRoot::drive('F', "/media/cle"),
                       PathRoot::share("nas", "photos", "/srv/photos")});
    for (const std::string& text : {path, "F:\\" + path, "\\\\nas\\photos\\" + path}) {
        Place place;
        if (!map.locate(text, place).ok()) continue;
        expect(isWithin(place.native, place.root), "a path stays below its root");
        expect(!escapes(place.native), "nothing climbs");
        Place again;
        const std::string core = map.toCore(place.native);
        expect(map.locate(core, again).ok(), "the core's form is found");
        expect(again.native == place.native, "and leads to the same file");
        expect(inPlainSpelling(core) == core, "the core's form is plain");
        expect(map.fromNative(core, "/") == core, "and is not turned twice");
    }
    if (other.empty() || other.find('\0') != std::string::npos) return;
    const std::string native = normalizedPath('/' + other);
    expect(normalizedPath(native) == native, "normalized once");
    Place place;
    expect(map.locate(map.toCore(native), place).ok(), "every file has a path");
    expect(place.native == native, "that leads to it again");
}

void checkRules(const std::string& name, const std::string& path, const std::string& other) {
    const LeftOut leftOut{path, withTrailingBackslash(other), {{ExclusionMode::listed, {name}}}};
    const std::string parent = withTrailingBackslash(other);
    if (isExcludedDirectory(parent, name, leftOut)) {
        expect(isExcludedFromDeletion(parent, name, leftOut), "what is left out is never deleted");
    }
    expect(isExcludedFromDeletion(parent, lowerCase(name), leftOut) ||
               !isExcludedFromDeletion(parent, name, leftOut) || name == "Recycled" ||
               name == "System Volume Information",
           "in any case");
    (void)isSystemFile(name);
    (void)isSpecialFolder(path);
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace coffrelune::fuzz;
    Feed feed(bytes, size);
    const std::string name = feed.text();
    const std::string path = feed.text();
    const std::string other = feed.rest();
    checkName(name);
    checkPath(path);
    checkMap(path, other);
    checkRules(name, path, other);
    return 0;
}
