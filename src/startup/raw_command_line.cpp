#include "startup/raw_command_line.h"

namespace coffrelune {
namespace {

constexpr const char* blanks = " \t";

// The program's name ends at its closing quote, or at the first blank when it has none.
std::string::size_type endOfName(const std::string& text) {
    if (text.empty() || text[0] != '"') return text.find_first_of(blanks);
    const auto quote = text.find('"', 1);
    return quote == std::string::npos ? quote : quote + 1;
}

}  // namespace

std::string argumentText(const std::string& commandLine) {
    const auto end = endOfName(commandLine);
    if (end == std::string::npos) return {};
    const auto begin = commandLine.find_first_not_of(blanks, end);
    if (begin == std::string::npos) return {};
    std::string text = commandLine.substr(begin);
    for (auto first = text.find('"'); first != std::string::npos;) {
        const auto second = text.find('"', first + 1);
        if (second == std::string::npos) break;
        text.erase(second, 1);
        text.erase(first, 1);
        first = text.find('"', second - 1);
    }
    return text;
}

}  // namespace coffrelune
