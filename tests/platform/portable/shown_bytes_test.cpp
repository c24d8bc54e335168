#include "platform/shown_bytes.h"

#include <gtest/gtest.h>

#include "platform/utf8.h"

namespace coffrelune {
namespace {

bool isUtf8(const std::string& text) {
    for (std::size_t position = 0; position < text.size();) {
        const char32_t character = utf8::next(text, position);
        if (character >= utf8::rawByte + 0x80 && character <= utf8::rawByte + 0xFF) return false;
    }
    return true;
}

TEST(ShownBytes, LeaveValidTextAlone) {
    for (const char* text : {"", "C:\\Été\\日本 🌒", "a&b"}) {
        EXPECT_EQ(shownBytes(text), text);
        EXPECT_EQ(rawBytes(text), text);
    }
}

TEST(ShownBytes, AreValidTextThatGivesTheBytesBack) {
    std::string every = "caf";
    for (int byte = 1; byte < 256; ++byte) every.push_back(static_cast<char>(byte));
    for (const std::string& name : {std::string("C:\\caf\xE9"), std::string("\xED\xB3\xA9 half"),
                                    std::string("\xF4\x90\x80\x80"), every}) {
        EXPECT_FALSE(isUtf8(name));
        EXPECT_TRUE(isUtf8(shownBytes(name)));
        EXPECT_EQ(rawBytes(shownBytes(name)), name);
    }
    EXPECT_EQ(shownBytes("caf\xE9"), "caf\U0010DCE9");
}

}  // namespace
}  // namespace coffrelune
