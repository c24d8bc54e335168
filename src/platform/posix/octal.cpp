#include "platform/posix/octal.h"

namespace coffrelune {
namespace {

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

bool isSequence(std::string_view text) {
    return text.size() >= 4 && isOctal(text[1]) && isOctal(text[2]) && isOctal(text[3]);
}

}  // namespace

std::string escapeOctal(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && c != '\\') {
            result += c;
            continue;
        }
        result += '\\';
        for (int shift = 6; shift >= 0; shift -= 3) {
            result += static_cast<char>('0' + ((byte >> shift) & 7));
        }
    }
    return result;
}

bool unescapeOctal(std::string_view text, std::string& result) {
    result.clear();
    bool sound = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
        } else if (isSequence(text.substr(i))) {
            result += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 +
                                        (text[i + 3] - '0'));
            i += 3;
        } else {
            result += text[i];
            sound = false;
        }
    }
    return sound;
}

}  // namespace coffrelune
