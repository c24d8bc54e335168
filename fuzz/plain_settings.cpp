#include "plain_settings.h"

#include "platform/characters.h"
#include "settings/encoding.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

std::string trimmed(std::string text) {
    while (!text.empty() && isBlank(text.front())) text.erase(0, 1);
    while (!text.empty() && isBlank(text.back())) text.pop_back();
    return text;
}

bool isUtf8(const std::string& bytes) {
    for (std::size_t position = 0; position < bytes.size();) {
        const char32_t character = utf8::next(bytes, position);
        if (character >= utf8::rawByte + 0x80 && character <= utf8::rawByte + 0xFF) return false;
    }
    return true;
}

std::string decoded(const std::string& bytes) {
    if (bytes.starts_with("\xFF\xFE")) return utf16le::decode(std::string_view(bytes).substr(2));
    if (bytes.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
    return isUtf8(bytes) ? bytes : Windows1252().decode(bytes);
}

std::string unquoted(std::string text) {
    if (text.size() < 2 || text.front() != text.back()) return text;
    return text.front() == '"' || text.front() == '\'' ? text.substr(1, text.size() - 2) : text;
}

// What a value is when it has been written and read.
std::string readBack(const std::string& value) {
    // A line end inside a value is no blank at its end: it is written as another character.
    std::string text = value;
    while (!text.empty() && isBlank(text.front()) && text.front() != '\r') text.erase(0, 1);
    while (!text.empty() && isBlank(text.back()) && text.back() != '\r') text.pop_back();
    return unquoted(text);
}

bool fitsALine(const std::string& key) {
    if (key.empty() || key.front() == ';' || key.front() == '[' || trimmed(key) != key)
        return false;
    for (const char c : key) {
        if (c == '=' || (c >= 0 && c < ' ')) return false;
    }
    return true;
}

}  // namespace

PlainSettings PlainSettings::read(const std::string& bytes) {
    PlainSettings settings;
    std::string line;
    for (const char c : decoded(bytes) + "\n") {
        if (c != '\n') {
            line += c;
            continue;
        }
        settings.takeLine(line);
        line.clear();
    }
    return settings;
}

void PlainSettings::takeLine(const std::string& line) {
    const std::string text = trimmed(line);
    if (text.empty() || text.front() == ';') return;
    const std::size_t bracket = text.rfind(']');
    if (text.front() == '[' && bracket != std::string::npos) {
        sections_.push_back({unescapeCharacters(text.substr(1, bracket - 1), lineBreakers), {}});
        return;
    }
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || sections_.empty()) return;
    const std::string key = trimmed(text.substr(0, equals));
    if (key.empty()) return;
    const std::string stored = unquoted(trimmed(text.substr(equals + 1)));
    sections_.back().values.emplace_back(key, unescapeCharacters(stored, lineBreakers));
}

PlainSettings::Section* PlainSettings::find(const std::string& section) {
    for (Section& candidate : sections_) {
        if (equalIgnoringCase(candidate.name, section)) return &candidate;
    }
    return nullptr;
}

bool PlainSettings::hasSection(const std::string& section) const {
    return const_cast<PlainSettings*>(this)->find(section) != nullptr;
}

std::string PlainSettings::value(const std::string& section, const std::string& key) const {
    const Section* found = const_cast<PlainSettings*>(this)->find(section);
    if (found == nullptr) return {};
    for (const auto& [name, text] : found->values) {
        if (equalIgnoringCase(name, key)) return text;
    }
    return {};
}

bool PlainSettings::setValue(const std::string& section, const std::string& key,
                             const std::string& value) {
    if (!fitsALine(key)) return false;
    if (!hasSection(section)) sections_.push_back({section, {}});
    Section& found = *find(section);
    for (auto& [name, text] : found.values) {
        if (!equalIgnoringCase(name, key)) continue;
        text = readBack(value);
        return true;
    }
    found.values.emplace_back(key, readBack(value));
    return true;
}

void PlainSettings::deleteKey(const std::string& section, const std::string& key) {
    Section* found = find(section);
    if (found == nullptr) return;
    std::erase_if(found->values,
                  [&](const auto& value) { return equalIgnoringCase(value.first, key); });
}

void PlainSettings::deleteSection(const std::string& section) {
    std::erase_if(sections_, [&](const Section& candidate) {
        return equalIgnoringCase(candidate.name, section);
    });
}

}  // namespace coffrelune::fuzz
