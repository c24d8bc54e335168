// A list of hashes. The first text is a file as it is; the others are what one is made of.

#include "engine/hash_list.h"
#include "feed.h"

namespace coffrelune::fuzz {
namespace {

void readAny(const std::string& text) {
    const std::optional<HashList> found = readHashList(text);
    if (!found) return;
    expect(text.starts_with(hashListMark), "a kind that is known");
    expect(readHashList(hashListText(*found)) == found, "written and read again, the same");
}

void makeOne(Feed& feed) {
    HashList list;
    while (!feed.ends()) {
        HashedCopy& copy = list[static_cast<int>(list.size())];
        copy.root = feed.text();
        for (std::string path = feed.text(); !path.empty(); path = feed.text()) {
            copy.files[path] = {"0123456789abcdef", path.size(), path.size() << 40};
        }
    }
    const std::string text = hashListText(list);
    expect(readHashList(text) == list, "a list comes back as it was");
    for (const std::size_t size : cutsOf(text)) {
        if (size == text.size()) continue;
        expect(!readHashList(text.substr(0, size)), "a list that is cut is none");
    }
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::readAny(feed.text());
    coffrelune::fuzz::makeOne(feed);
    return 0;
}
