// A text that another program offers by drag and drop.

#include "feed.h"
#include "platform/names.h"
#include "platform/posix/path_map.h"
#include "system/paths.h"

namespace coffrelune::fuzz {
namespace {

// The address of a path, every byte of it coded.
std::string addressOf(const std::string& path) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string address = "file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '/') {
            address += c;
        } else {
            address += {'%', digits[byte / 16], digits[byte % 16]};
        }
    }
    return address;
}

void run(const std::string& text) {
    const std::string path = pathOfDroppedText(text);
    expect(path.size() <= text.size(), "no path is longer than its address");
    expect(path.find('\0') == std::string::npos || text.find('\0') != std::string::npos,
           "no NUL comes from a code");
    expect(pathOfDroppedText('"' + path + '"') == path || path.find(':') != std::string::npos,
           "quotes are taken off once");
    const PathMap map({PathRoot::drive('C', "/")});
    const std::string core = map.fromNative(path, "/");
    expect(inPlainSpelling(core) == core, "what is dropped is in the plain spelling");
    if (text.find('\0') != std::string::npos) return;
    const std::string dropped = '/' + text;
    expect(pathOfDroppedText(addressOf(dropped) + "\r\n") == dropped,
           "an address leads to its file");
    expect(pathOfDroppedText(addressOf(dropped) + "\r\nfile:///other\r\n") == dropped,
           "the first of several");
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::run(coffrelune::fuzz::Feed(bytes, size).rest());
    return 0;
}
