#include "settings/settings_text.h"

#include <algorithm>

#include "platform/characters.h"
#include "settings/encoding.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::string_view utf16Mark = "\xFF\xFE";
constexpr std::string_view utf16BigEndianMark = "\xFE\xFF";
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t\r\v\f";

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

enum class Kind { blank, comment, header, key, other };

// A line understood; `name` is that of its section or key, `value` the offset where a value begins.
struct Content {
    Kind kind = Kind::other;
    std::string_view name;
    std::size_t value = 0;
};

Content understand(std::string_view text) {
    const std::string_view shown = trim(text);
    if (shown.empty()) return {Kind::blank, {}, 0};
    if (shown.front() == ';') return {Kind::comment, {}, 0};
    const std::size_t bracket = shown.rfind(']');
    if (shown.front() == '[' && bracket != std::string_view::npos) {
        return {Kind::header, shown.substr(1, bracket - 1), 0};
    }
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) return {};
    const std::string_view name = trim(text.substr(0, equals));
    if (name.empty()) return {};
    const std::size_t value = text.find_first_not_of(blanks, equals + 1);
    return {Kind::key, name, std::min(value, text.size())};
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isUtf8(std::string_view bytes) {
    for (std::size_t position = 0; position < bytes.size();) {
        const char32_t c = utf8::next(bytes, position);
        if (c >= utf8::rawByte + 0x80 && c <= utf8::rawByte + 0xFF) return false;
    }
    return true;
}

bool canBeReadBack(std::string_view key) {
    const bool plain = std::none_of(key.begin(), key.end(), [](char c) {
        return c == '=' || static_cast<unsigned char>(c) < 0x20;
    });
    return plain && !key.empty() && trim(key) == key && key.front() != ';' && key.front() != '[';
}

}  // namespace

bool SettingsText::parse(std::string bytes) {
    const bool bigEndian = bytes.starts_with(utf16BigEndianMark);
    bytes_ = std::move(bytes);
    encoding_ = Encoding::ansi;
    start_ = 0;
    if (bytes_.starts_with(utf16Mark)) {
        encoding_ = Encoding::utf16;
        start_ = utf16Mark.size();
    } else if (bytes_.starts_with(utf8Mark)) {
        encoding_ = Encoding::utf8;
        start_ = utf8Mark.size();
    } else if (isUnmarkedUtf8()) {
        encoding_ = Encoding::utf8;
    }
    const bool text = encoding_ == Encoding::utf16 ? utf16le::isText(bytes_)
                                                   : bytes_.find('\0') == std::string::npos;
    if (bigEndian || !text) {
        bytes_.clear();
        encoding_ = Encoding::ansi;
        start_ = 0;
    }
    index();
    return text && !bigEndian;
}

std::string SettingsText::value(std::string_view section, std::string_view key) const {
    const Section* found = find(section);
    if (found == nullptr) return {};
    const auto& lines = keysOf(*found);
    const auto line = lines.find(lowerCase(key));
    if (line == lines.end()) return {};
    const std::string text = textOf(lineAt(line->second));
    const std::string_view stored = trim(std::string_view(text).substr(understand(text).value));
    return unescapeCharacters(withoutQuotes(stored), lineBreakers);
}

std::vector<std::string> SettingsText::keys(std::string_view section) const {
    std::vector<std::string> names;
    const Section* found = find(section);
    if (found == nullptr) return names;
    Line line = lineAt(found->header);
    while (line.next < found->end) {
        line = lineAt(line.next);
        const std::string text = textOf(line);
        const Content content = understand(text);
        if (content.kind == Kind::key) names.emplace_back(content.name);
    }
    return names;
}

std::vector<std::string> SettingsText::sections() const {
    std::vector<std::string> names;
    names.reserve(sections_.size());
    for (const Section& section : sections_) names.push_back(section.name);
    return names;
}

bool SettingsText::hasSection(std::string_view section) const {
    return find(section) != nullptr;
}

SettingsText::Edit SettingsText::setValue(const std::string& section, const std::string& key,
                                          const std::string& value) {
    if (!canBeReadBack(key)) return Edit::refused;
    const std::string stored = escapeCharacters(value, lineBreakers);
    const std::string header = '[' + escapeCharacters(section, lineBreakers) + ']';
    // Apart, as they will stand: bytes that are no text alone might be a character together.
    if (!makeRoomFor(header + '\n' + key + '=' + stored)) return Edit::refused;
    const Section* found = find(section);
    if (found == nullptr) {
        insertLine(bytes_.size(), header);
        insertLine(bytes_.size(), key + '=' + stored);
        return finishEdit();
    }
    Line line{};
    if (!findKey(*found, key, line)) {
        insertLine(extentOf(*found).lastText, key + '=' + stored);
        return finishEdit();
    }
    const std::string before = textOf(line);
    const std::string after = before.substr(0, understand(before).value) + stored;
    if (before == after) return Edit::none;
    bytes_.replace(line.begin, line.end - line.begin, encode(after));
    index();
    return finishEdit();
}

SettingsText::Edit SettingsText::deleteKey(const std::string& section, const std::string& key) {
    const Section* found = find(section);
    if (found == nullptr) return Edit::none;
    Line line = lineAt(found->header);
    std::string kept = bytes_.substr(0, line.next);
    while (line.next < found->end) {
        line = lineAt(line.next);
        const std::string text = textOf(line);
        const Content content = understand(text);
        if (content.kind == Kind::key && equalIgnoringCase(content.name, key)) continue;
        kept.append(bytes_, line.begin, line.next - line.begin);
    }
    kept.append(bytes_, found->end);
    if (kept.size() == bytes_.size()) return Edit::none;
    bytes_ = std::move(kept);
    index();
    return finishEdit();
}

SettingsText::Edit SettingsText::deleteSection(const std::string& section) {
    std::string kept;
    std::size_t copied = 0;
    for (const Section& candidate : sections_) {
        if (!equalIgnoringCase(candidate.name, section)) continue;
        kept.append(bytes_, copied, candidate.header - copied);
        copied = extentOf(candidate).end;
    }
    if (copied == 0) return Edit::none;
    kept.append(bytes_, copied);
    bytes_ = std::move(kept);
    index();
    return finishEdit();
}

SettingsText::Edit SettingsText::renameSection(const std::string& from, const std::string& to) {
    if (!hasSection(from)) return Edit::none;
    const std::string header = '[' + escapeCharacters(to, lineBreakers) + ']';
    const bool taken = !equalIgnoringCase(from, to) && hasSection(to);
    if (taken || !makeRoomFor(header)) return Edit::refused;
    // Each of them: one that kept the old name would bring the section back.
    const std::size_t count = sections_.size();  // a new name begins no other section
    for (std::size_t i = 0; i != count; ++i) {
        if (!equalIgnoringCase(sections_[i].name, from)) continue;
        const Line line = lineAt(sections_[i].header);
        bytes_.replace(line.begin, line.end - line.begin, encode(header));
        index();
    }
    return finishEdit();
}

SettingsText::Edit SettingsText::copySection(
    const std::string& from, const std::string& to,
    const std::function<bool(const std::string& key)>& leavesOut) {
    if (!hasSection(from)) return Edit::none;
    const std::string header = '[' + escapeCharacters(to, lineBreakers) + ']';
    if (hasSection(to) || !makeRoomFor(header)) return Edit::refused;
    const Section& source = *find(from);
    std::string copied = header;
    Line line = lineAt(source.header);
    while (line.next < source.end) {
        line = lineAt(line.next);
        const std::string text = textOf(line);
        const Content content = understand(text);
        if (content.kind != Kind::key || leavesOut(std::string(content.name))) continue;
        copied.append(lineEnd_).append(text);
    }
    insertLine(bytes_.size(), copied);
    return finishEdit();
}

SettingsText::Line SettingsText::lineAt(std::size_t begin) const {
    const std::size_t width = encoding_ == Encoding::utf16 ? 2 : 1;
    std::size_t end = bytes_.find('\n', begin);
    // In UTF-16 the byte may be one half of another character.
    while (width == 2 && end != std::string::npos &&
           ((end - begin) % 2 != 0 || bytes_[end + 1] != '\0')) {
        end = bytes_.find('\n', end + 1);
    }
    if (end == std::string::npos) return {begin, bytes_.size(), bytes_.size()};
    const std::size_t next = end + width;
    const bool hasReturn = end >= begin + width && bytes_[end - width] == '\r' &&
                           (width == 1 || bytes_[end - 1] == '\0');
    return {begin, hasReturn ? end - width : end, next};
}

std::string SettingsText::textOf(const Line& line) const {
    return decode(bytes_.substr(line.begin, line.end - line.begin));
}

// Spares the decoding of every line that is none.
bool SettingsText::mayBeHeader(const Line& line) const {
    const std::string_view bytes =
        std::string_view(bytes_).substr(line.begin, line.end - line.begin);
    const std::size_t first = bytes.find_first_not_of(
        encoding_ == Encoding::utf16 ? std::string_view(" \t\r\v\f\0", 6) : blanks);
    return first != std::string_view::npos && bytes[first] == '[';
}

const SettingsText::Section* SettingsText::find(std::string_view section) const {
    const auto found = std::find_if(
        sections_.begin(), sections_.end(),
        [section](const Section& candidate) { return equalIgnoringCase(candidate.name, section); });
    return found == sections_.end() ? nullptr : &*found;
}

bool SettingsText::findKey(const Section& section, std::string_view key, Line& line) const {
    line = lineAt(section.header);
    while (line.next < section.end) {
        line = lineAt(line.next);
        const std::string text = textOf(line);
        const Content content = understand(text);
        if (content.kind == Kind::key && equalIgnoringCase(content.name, key)) return true;
    }
    return false;
}

const SettingsText::KeyLines& SettingsText::keysOf(const Section& section) const {
    if (section.keys) return *section.keys;
    KeyLines keys;
    Line line = lineAt(section.header);
    while (line.next < section.end) {
        line = lineAt(line.next);
        const std::string text = textOf(line);
        const Content content = understand(text);
        if (content.kind != Kind::key) continue;
        keys.emplace(lowerCase(content.name), static_cast<std::uint32_t>(line.begin));
    }
    return section.keys.emplace(std::move(keys));
}

SettingsText::Extent SettingsText::extentOf(const Section& section) const {
    Line line = lineAt(section.header);
    Extent extent{line.next, line.next};
    std::size_t comments = 0;  // where a run of comments ends whose section is not known yet
    while (line.next < section.end) {
        line = lineAt(line.next);
        const Kind kind = understand(textOf(line)).kind;
        if (kind == Kind::comment) {
            comments = line.next;
            continue;
        }
        extent.end = line.next;
        if (kind != Kind::blank) extent.lastText = line.next;
        if (kind == Kind::blank && comments != 0) extent.lastText = comments;
        comments = 0;
    }
    if (comments != 0 && section.end == bytes_.size()) extent = {comments, comments};
    return extent;
}

std::string SettingsText::decode(const std::string& bytes) const {
    if (encoding_ == Encoding::ansi) return ansi_->decode(bytes);
    return encoding_ == Encoding::utf16 ? utf16le::decode(bytes) : bytes;
}

std::string SettingsText::encode(const std::string& text) const {
    if (encoding_ == Encoding::utf8) return text;
    if (encoding_ == Encoding::utf16) return utf16le::encode(text);
    std::string bytes;
    ansi_->encode(text, bytes);
    return bytes;
}

// Whether the code page gives the text back as it was: some encoders take a near relative of a
// character that they do not have.
bool SettingsText::holds(const std::string& text) const {
    std::string bytes;
    return encoding_ != Encoding::ansi ||
           (ansi_->encode(text, bytes) && ansi_->decode(bytes) == text);
}

bool SettingsText::makeRoomFor(const std::string& text) {
    if (holds(text)) return true;
    const std::string whole = ansi_->decode(bytes_);
    if (encode(whole) != bytes_) return false;
    becomeUtf16(whole);
    return true;
}

bool SettingsText::isUnmarkedUtf8() const {
    return ansi_->editorsWriteUtf8() && !isAscii(bytes_) && isUtf8(bytes_);
}

void SettingsText::becomeUtf16(const std::string& whole) {
    encoding_ = Encoding::utf16;
    start_ = utf16Mark.size();
    bytes_ = std::string(utf16Mark) + utf16le::encode(whole);
    index();
}

// Without a mark, what the bytes have become says how they will be read the next time.
SettingsText::Edit SettingsText::finishEdit() {
    if (start_ != 0 || isAscii(bytes_)) return Edit::made;
    const Encoding next = isUnmarkedUtf8() ? Encoding::utf8 : Encoding::ansi;
    if (next != encoding_) becomeUtf16(decode(bytes_));
    return Edit::made;
}

void SettingsText::insertLine(std::size_t at, const std::string& text) {
    const std::string lineFeed = encode("\n");
    const bool afterLine =
        at == start_ || bytes_.compare(at - lineFeed.size(), lineFeed.size(), lineFeed) == 0;
    bytes_.insert(at, encode((afterLine ? "" : lineEnd_) + text + lineEnd_));
    index();
}

void SettingsText::index() {
    sections_.clear();
    lineEnd_ = "\r\n";
    const std::size_t width = encoding_ == Encoding::utf16 ? 2 : 1;
    for (std::size_t position = start_; position < bytes_.size();) {
        const Line line = lineAt(position);
        if (position == start_ && line.next == line.end + width) lineEnd_ = "\n";
        if (mayBeHeader(line)) {
            const std::string text = textOf(line);
            const Content content = understand(text);
            if (content.kind == Kind::header) {
                const auto offset = static_cast<std::uint32_t>(position);
                if (!sections_.empty()) sections_.back().end = offset;
                sections_.push_back({unescapeCharacters(content.name, lineBreakers), offset,
                                     static_cast<std::uint32_t>(bytes_.size())});
            }
        }
        position = line.next;
    }
}

}  // namespace coffrelune
