// Lists of excluded directories: written, packed, taken apart and read again. The first text is a
// packed list as it is, those after it are directories.

#include "feed.h"
#include "platform/memory/memory_platform.h"
#include "settings/system_mod.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

// What a settings file gives back of a directory.
std::string stored(const std::string& directory) {
    return firstCharacters(directory, SettingsFile::longestValue);
}

void run(Feed& feed) {
    MemoryPlatform memory;
    memory.disk().directory("C:\\");
    Platform platform = memory.platform();
    SystemMod system(platform, {"", "C:\\", 3, 5});
    system.LoadSettings();

    system.StoreExclusions(feed.text(), 0);
    const std::string packed = system.PackExclusions(0);
    system.LoadExclusions(0);
    const ExclusionList first = system.exclusions;
    system.StoreExclusions(packed, 1);
    system.LoadExclusions(1);
    expect(system.exclusions.mode == first.mode, "a packed list keeps its mode");
    bool whole = true;  // an escaped character may make a long directory too long
    for (const std::string& directory : first.directories) whole &= directory.size() < 300;
    expect(!whole || system.exclusions == first, "a packed list is the list");

    std::vector<std::string> directories;
    system.writeExclusionMode(2, ExclusionMode::listed);
    while (!feed.ends() && directories.size() < 6) {
        const std::string directory = feed.text();
        if (directory.empty() || directory.size() > 300 || stored(directory) != directory) continue;
        directories.push_back(directory);
        system.writeExcludedDirectory(2, directories.size(), directory);
    }
    system.LoadExclusions(2);
    expect(system.exclusions.directories == directories, "every directory is written");
    system.StoreExclusions(system.PackExclusions(2), 3);
    system.LoadExclusions(3);
    expect(system.exclusions.mode == ExclusionMode::listed, "copied with its mode");
    expect(system.exclusions.directories == directories, "copied to another line");
    system.ClearExclusions(2);
    system.LoadExclusions(2);
    expect(system.exclusions == ExclusionList{}, "cleared");
    system.LoadExclusions(3);
    expect(system.exclusions.directories == directories, "another line's list stays");
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::run(feed);
    return 0;
}
