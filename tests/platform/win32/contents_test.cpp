#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "platform/win32/test_disk.h"
#include "platform/win32/win32_contents.h"

namespace coffrelune {
namespace {

std::string patternOf(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t i = 0; i < length; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

/// All of it, asked for in pieces of `piece` bytes; each but the last must be full.
std::string readInPieces(const std::string& path, std::size_t piece) {
    std::unique_ptr<Content> content;
    EXPECT_EQ(Win32Contents().open(path, LinkRule::follow, content).code(), 0U);
    std::string bytes;
    if (content == nullptr) return bytes;
    std::vector<char> buffer(piece);
    for (std::size_t length = piece; length == piece;) {
        EXPECT_EQ(content->read(buffer, length).code(), 0U);
        bytes.append(buffer.data(), length);
    }
    return bytes;
}

// Of sectors and of what is read at once: none, less, exactly one, one and a little.
TEST(Win32Contents, ReadsFilesOfAnyLengthInPiecesOfAnyLength) {
    const disk::Temporary place;
    constexpr std::size_t block = std::size_t{1} << 20;
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{4095}, std::size_t{4096}, std::size_t{4097},
          block - 1, block, block + 1, 2 * block, 2 * block + 5000}) {
        const std::string path = place.at("fichier " + std::to_string(length));
        disk::makeFile(path, patternOf(length), 0);
        for (const std::size_t piece : {std::size_t{1000}, std::size_t{65536}, 3 * block}) {
            EXPECT_TRUE(readInPieces(path, piece) == patternOf(length)) << length << ", " << piece;
        }
    }
}

TEST(Win32Contents, FailsForWhatIsNotThere) {
    const disk::Temporary place;
    std::unique_ptr<Content> content;
    EXPECT_EQ(Win32Contents().open(place.at("absent"), LinkRule::follow, content).code(), 2U);
}

}  // namespace
}  // namespace coffrelune
