// The window of the last errors over a file of any bytes, and a journal that is written and shown.

#include "feed.h"
#include "operation/errors.h"
#include "plain_files.h"
#include "platform/memory/memory_platform.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

std::string shown(const VisuErrFrm& window) {
    std::string text;
    for (std::size_t i = 0; i < window.ListeTxt.lineCount(); ++i) {
        const std::string_view line = window.ListeTxt.line(i);
        expect(line.find("\r\n") == std::string_view::npos, "a line is one line");
        text.append(line).append("\r\n");
    }
    expect(text == window.ListeTxt.text(), "the lines are the text");
    return text;
}

std::string endedOnce(std::string text) {
    if (!text.empty() && !text.ends_with("\r\n")) text += "\r\n";
    return text;
}

void run(Feed& feed) {
    MemoryPlatform memory;
    PlainFiles files;
    Platform platform = memory.platform(files);
    SystemMod system(platform, {"", "C:\\", 3, 5});
    system.configurationName = feed.text();
    if (system.configurationName.size() > 200) return;  // no file can bear such a name
    const std::string path = errorListPath(system, OperationKind::backup);
    const std::string fileName = path.substr(3);
    expect(path.starts_with("C:\\S_") && path.ends_with(".err") &&
               fileName.find_first_of("<>|\\/*:?\"") == std::string::npos,
           "the list lies beside the settings");
    const std::string bytes = feed.rest();
    expect(files.writeWhole(path, bytes, Durability::now).ok(), "the list is there");
    {
        const VisuErrFrm window(system);
        const std::string text = platform.ansi.decode(bytes);
        expect(text == "\r\n" || shown(window) == endedOnce(text), "every line is shown");
    }
    expect(EcritErreurs(system, bytes).ok(), "a journal is written");
    std::string held;
    const bool whole = platform.ansi.encode(bytes, held);
    const std::string list = readErrorList(system, OperationKind::backup);
    expect(!whole || list == bytes, "a journal comes back as it was");
    expect(characterCount(list) == characterCount(bytes), "no character is lost");
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::run(feed);
    return 0;
}
