// Lists of excluded directories: written, packed, taken apart and read again. The first text is a
// packed list as it is, those after it are directories.

#include <algorithm>

#include "feed.h"
#include "plain_files.h"
#include "platform/memory/memory_platform.h"
#include "settings/system_mod.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

// What a settings file gives back of a directory.
std::string stored(const std::string& directory) {
    return firstCharacters(directory, SettingsFile::longestValue);
}

// A settings file of its own, with a configuration whose lines are empty.
class Settings {
  public:
    Settings() { system_.configurationName = "Photos"; }
    SystemMod& system() { return system_; }
    const ExclusionList& loaded(int line) {
        system_.LoadExclusions(line);
        return system_.exclusions;
    }

  private:
    MemoryPlatform memory_;
    PlainFiles files_;
    Platform platform_ = memory_.platform(files_);
    SystemMod system_{platform_, {"", "C:\\", 3, 5}};
};

// Each entry is one write of the whole file: of a long list, the beginning.
std::string beginningOf(const std::string& packed) {
    std::size_t end = 0;
    for (int entries = 0; entries < 4 && end < packed.size(); ++entries) {
        end = std::min(packed.find('|', end + 1), packed.size());
    }
    return packed.substr(0, end);
}

void readAny(const std::string& text) {
    Settings settings;
    settings.system().StoreExclusions(text, 0);
    const std::string packed = settings.system().PackExclusions(0);
    const ExclusionList first = settings.loaded(0);
    settings.system().StoreExclusions(packed, 1);
    const ExclusionList second = settings.loaded(1);
    expect(second.mode == first.mode, "a packed list keeps its mode");
    bool whole = true;  // an escaped character may make a long directory too long
    for (const std::string& directory : first.directories) whole &= directory.size() < 300;
    expect(!whole || second == first, "a packed list is the list");
}

void makeOne(Feed& feed) {
    Settings settings;
    SystemMod& system = settings.system();
    std::vector<std::string> directories;
    system.writeExclusionMode(2, ExclusionMode::listed);
    while (!feed.ends() && directories.size() < 3) {
        const std::string directory = feed.text();
        if (directory.empty() || directory.size() > 300 || stored(directory) != directory) continue;
        directories.push_back(directory);
        system.writeExcludedDirectory(2, directories.size(), directory);
    }
    if (directories.empty()) return;  // readAny() has been there
    const ExclusionList made{ExclusionMode::listed, directories};
    expect(settings.loaded(2) == made, "every directory is written");
    system.StoreExclusions(system.PackExclusions(2), 3);
    expect(settings.loaded(3) == made, "copied to another line, with its mode");
    system.ClearExclusions(2);
    expect(settings.loaded(2) == ExclusionList{}, "cleared");
    expect(settings.loaded(3) == made, "another line's list stays");
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::readAny(coffrelune::fuzz::beginningOf(feed.text()));
    coffrelune::fuzz::makeOne(feed);
    return 0;
}
