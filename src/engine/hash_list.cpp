#include "engine/hash_list.h"

#include <charconv>
#include <string_view>

namespace coffrelune {
namespace {

constexpr std::string_view heading = "Coffrelune, empreintes 1";
constexpr std::string_view ending = "fin ";
constexpr std::string_view digits = "0123456789abcdef";
constexpr std::size_t hashLength = 16;

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F && c != '%') {
            result += c;
            continue;
        }
        result += '%';
        result += digits[byte >> 4];
        result += digits[byte & 0xF];
    }
    return result;
}

std::optional<std::string> unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const std::size_t high = digits.find(text[i + 1]);
        const std::size_t low = digits.find(text[i + 2]);
        if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
        result += static_cast<char>(high * digits.size() + low);
        i += 2;
    }
    return result;
}

/// Takes the text up to `end`, and `end` with it.
std::optional<std::string_view> take(std::string_view& text, char end) {
    const std::size_t position = text.find(end);
    if (position == std::string_view::npos) return std::nullopt;
    const std::string_view taken = text.substr(0, position);
    text.remove_prefix(position + 1);
    return taken;
}

template <typename Number>
bool readNumber(std::optional<std::string_view> text, Number& number) {
    if (!text || text->empty()) return false;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    return error == std::errc() && stop == end && std::to_string(number) == *text;
}

bool isHash(std::string_view text) {
    return text.size() == hashLength && text.find_first_not_of(digits) == std::string_view::npos;
}

/// "ligne 3 E:\Save\Docs"
bool readCopy(std::string_view line, HashList& list, HashedCopy*& copy) {
    (void)take(line, ' ');
    int number = 0;
    if (!readNumber(take(line, ' '), number) || number < 1 || list.contains(number - 1)) {
        return false;
    }
    const std::optional<std::string> root = unescaped(line);
    if (!root || escaped(*root) != line) return false;
    copy = &list[number - 1];
    copy->root = *root;
    return true;
}

bool readFile(std::string_view line, HashedCopy& copy) {
    HashedFile file;
    const std::optional<std::string_view> hash = take(line, ' ');
    if (!hash || !isHash(*hash)) return false;
    file.hash = *hash;
    if (!readNumber(take(line, ' '), file.size)) return false;
    if (!readNumber(take(line, ' '), file.lastWrite)) return false;
    const std::optional<std::string> path = unescaped(line);
    if (!path || path->empty() || escaped(*path) != line) return false;
    return copy.files.emplace(*path, file).second;
}

}  // namespace

std::string hashListText(const HashList& list) {
    std::string text(heading);
    text += '\n';
    std::size_t count = 0;
    for (const auto& [line, copy] : list) {
        text += "ligne " + std::to_string(line + 1) + ' ' + escaped(copy.root) + '\n';
        for (const auto& [path, file] : copy.files) {
            text += file.hash + ' ' + std::to_string(file.size) + ' ' +
                    std::to_string(file.lastWrite) + ' ' + escaped(path) + '\n';
            ++count;
        }
    }
    return text.append(ending).append(std::to_string(count)).append("\n");
}

std::optional<HashList> readHashList(const std::string& text) {
    std::string_view rest = text;
    if (take(rest, '\n') != heading) return std::nullopt;
    HashList list;
    HashedCopy* copy = nullptr;
    std::size_t count = 0;
    while (const std::optional<std::string_view> line = take(rest, '\n')) {
        if (line->starts_with(ending)) {
            std::size_t told = 0;
            const bool whole =
                readNumber(line->substr(ending.size()), told) && told == count && rest.empty();
            return whole ? std::optional(list) : std::nullopt;
        }
        const bool understood = line->starts_with("ligne ")
                                    ? readCopy(*line, list, copy)
                                    : copy != nullptr && readFile(*line, *copy);
        if (!understood) return std::nullopt;
        if (!line->starts_with("ligne ")) ++count;
    }
    return std::nullopt;
}

}  // namespace coffrelune
