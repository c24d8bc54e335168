// The command line of the window program against the plainest reading of it.

#include "feed.h"
#include "settings/program_context.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

void run(const std::string& text) {
    const CommandLine found = readCommandLine(text);
    CommandLine expected;
    std::string word;
    bool first = true;
    const auto take = [&] {
        const std::string name = ProperCase(trimBlanks(word));
        if (!first && name == "Auto") {
            expected.AutoMode = true;
        } else if (!first) {
            expected.configurationName = name;
        }
        first = false;
        word.clear();
    };
    for (const char c : text) {
        if (c == '/') {
            take();
        } else {
            word += c;
        }
    }
    take();
    if (!text.empty() && text.find('/') == std::string::npos) {
        expected.configurationName = ProperCase(text);
    }
    expect(found.AutoMode == expected.AutoMode, "the same mode");
    expect(found.configurationName == expected.configurationName, "the same configuration");
    if (!found.configurationName) return;
    expect(ProperCase(*found.configurationName) == *found.configurationName,
           "a name that went through once stays as it is");
    expect(equalIgnoringCase(*found.configurationName, ProperCase(*found.configurationName)),
           "a name is found whatever its case");
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::run(coffrelune::fuzz::Feed(bytes, size).rest());
    return 0;
}
