#pragma once

/// Characters of ASCII, whatever the locale of the process.
namespace coffrelune::ascii {

constexpr bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// -1 when it is none.
constexpr int hexDigit(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

}  // namespace coffrelune::ascii
