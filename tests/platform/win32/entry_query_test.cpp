#include "platform/win32/entry_query.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace coffrelune {
namespace {

constexpr std::uint32_t reparse = 1024;
constexpr std::uint32_t archive = 32;

TEST(SpecialFiles, AreSocketsLinuxDevicesAndStandInsOfPrograms) {
    for (const std::uint32_t tag :
         {0x80000023U, 0x80000024U, 0x80000025U, 0x80000026U, 0x8000001BU}) {
        EXPECT_TRUE(isSpecial(reparse | archive, tag)) << std::hex << tag;
    }
}

// Links, and what only seems to be something else than a file: deduplicated, kept in a cloud.
TEST(SpecialFiles, AreNoneOfTheOtherReparsePoints) {
    for (const std::uint32_t tag :
         {0U, 0xA000000CU, 0xA0000003U, 0xA000001DU, 0x80000013U, 0x9000001AU, 0x80000017U}) {
        EXPECT_FALSE(isSpecial(reparse | archive, tag)) << std::hex << tag;
    }
}

// The field that holds a tag means nothing for other files.
TEST(SpecialFiles, AreReparsePoints) {
    EXPECT_FALSE(isSpecial(archive, 0x80000023U));
}

constexpr std::uint32_t mountPointTag = 0xA0000003;
constexpr std::uint32_t symbolicLinkTag = 0xA000000C;

/// What the system answers of a reparse point: the tag, the lengths, then where the two texts lie.
std::vector<std::byte> reparseRecord(std::uint32_t tag, const std::wstring& target,
                                     const std::wstring& shown) {
    const auto bytesOf = [](const std::wstring& text) {
        return static_cast<std::uint16_t>(text.size() * sizeof(wchar_t));
    };
    const std::wstring texts = target + L'\0' + shown + L'\0';
    const std::uint16_t head[] = {static_cast<std::uint16_t>(8 + bytesOf(texts)),
                                  0,
                                  0,
                                  bytesOf(target),
                                  static_cast<std::uint16_t>(bytesOf(target) + 2),
                                  bytesOf(shown)};
    std::vector<std::byte> record(sizeof tag + sizeof head + bytesOf(texts));
    std::memcpy(record.data(), &tag, sizeof tag);
    std::memcpy(record.data() + sizeof tag, head, sizeof head);
    std::memcpy(record.data() + sizeof tag + sizeof head, texts.data(), bytesOf(texts));
    return record;
}

const std::wstring volume = LR"(\??\Volume{8a2b6d3e-0000-0000-0000-100000000000}\)";

TEST(MountedFolder, IsADirectoryThatLeadsToAVolume) {
    EXPECT_TRUE(leadsToVolume(reparseRecord(mountPointTag, volume, L"")));
}

TEST(MountedFolder, IsNoLinkToAnotherDirectory) {
    EXPECT_FALSE(leadsToVolume(reparseRecord(mountPointTag, LR"(\??\D:\Photos)", LR"(D:\Photos)")));
    EXPECT_FALSE(leadsToVolume(reparseRecord(mountPointTag, volume + L"Photos", L"")));
    EXPECT_FALSE(leadsToVolume(reparseRecord(symbolicLinkTag, volume, L"")));
}

// A driver of its own may answer anything.
TEST(MountedFolder, IsNoneWhoseRecordIsCutShort) {
    const std::vector<std::byte> whole = reparseRecord(mountPointTag, volume, L"");
    for (std::size_t length = 0; length < whole.size() - 4; ++length) {
        EXPECT_FALSE(leadsToVolume({whole.data(), length})) << length;
    }
}

}  // namespace
}  // namespace coffrelune
