// The file of drive letters: any bytes, then the volumes of three runs. No letter ever changes its
// volume.

#include <unistd.h>

#include <cstdlib>
#include <map>

#include "feed.h"
#include "platform/posix/drive_table.h"
#include "platform/posix/whole_file.h"

namespace coffrelune::fuzz {
namespace {

using Letters = std::map<std::string, char>;

std::string pathOfFile() {
    return "/dev/shm/coffrelune-fuzz-" + std::to_string(getpid()) + ".ini";
}

std::string content(const std::string& file) {
    std::string bytes;
    const int error = readWholeFile(file, 1 << 20, bytes);
    expect(error == 0 || error == ENOENT, "the file can be read");
    return bytes;
}

void expectOneVolumeEach(const Letters& letters) {
    std::map<char, std::string> volumes;
    for (const auto& [volume, letter] : letters) {
        expect(letter >= 'D' && letter <= 'Z', "letters from D to Z");
        expect(volumes.emplace(letter, volume).second, "a letter stands for one volume");
    }
}

std::vector<std::string> volumes(const std::string& text) {
    std::vector<std::string> names;
    std::string name;
    for (const char c : text + ',') {
        if (c != ',') {
            name += c;
            continue;
        }
        if (!name.empty()) names.push_back((names.size() % 2 == 0 ? "uuid:x" : "path:/x") + name);
        name.clear();
    }
    return names;
}

void run(Feed& feed) {
    const std::string file = pathOfFile();
    const std::string bytes = feed.text();
    expect(writeWholeFile(file, bytes, Durability::nextFlush) == 0, "the file can be written");
    Letters given;
    std::string before = bytes;
    for (int run = 0; run < 3; ++run) {
        const std::vector<std::string> present = volumes(feed.text());
        DriveLetters letters(file);
        const Letters now = letters.assign(present);
        expectOneVolumeEach(now);
        for (const auto& [volume, letter] : now) {
            const auto known = given.emplace(volume, letter).first;
            expect(known->second == letter, "a volume keeps its letter from run to run");
        }
        expectOneVolumeEach(given);
        expect(letters.assign(present) == now, "asked again, the same letters");
        const std::string after = content(file);
        if (after != before) {
            expect(DriveLetters(file).assign(present) == now, "what is written holds");
        }
        before = after;
    }
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const int registered =
        std::atexit([] { unlink(coffrelune::fuzz::pathOfFile().c_str()); });
    (void)registered;
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::run(feed);
    return 0;
}
