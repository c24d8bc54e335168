#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/services.h"

namespace coffrelune {

/// The text of an INI file, kept byte for byte: only the lines that an edit concerns change. No
/// I/O.
///
/// Reads and writes as the profile functions of Windows do
/// (https://learn.microsoft.com/windows/win32/api/winbase/nf-winbase-getprivateprofilestringa and
/// .../nf-winbase-writeprivateprofilestringa): section and key names are matched without regard to
/// case; the first of several sections, or keys, of one name counts; blanks round a key and round
/// its value do not; one pair of quotes (double or single) round the value is taken off; a line
/// that begins with ";" is a comment; a section header is "[name]", name being everything between
/// "[" and the last "]". Lines end with LF or CR LF, the last one may end with nothing.
///
/// Text is in the ANSI code page, or in UTF-16 LE after its byte-order mark, which those functions
/// read and write as well, or in UTF-8 after its mark, as editors leave it; where they leave no
/// mark, a file that is valid UTF-8 beyond ASCII is UTF-8 as well. A file becomes UTF-16 LE at the
/// first edit that its code page cannot hold, or after which it would be read as something else; a
/// name that is no valid UTF-8 is kept there as lone surrogates.
///
/// Where those functions leave a hole, no setting is lost and none comes back: deleting concerns
/// every duplicate; comments right above a header stay with it; CR, LF and NUL within a value or a
/// section's name are written as private-use characters (see encoding.h).
class SettingsText {
  public:
    enum class Edit { none, made, refused };

    /// `ansi` must outlive this.
    explicit SettingsText(const AnsiCodec& ansi) : ansi_(&ansi) {}

    /// Takes the bytes of a file of at most 1 GiB. False when they are no text (NUL characters,
    /// half a UTF-16 character, UTF-16 BE): the object is then an empty file.
    bool parse(std::string bytes);

    const std::string& serialise() const { return bytes_; }

    /// The value without its quotes, "" when there is none.
    std::string value(std::string_view section, std::string_view key) const;
    /// In file order, as spelled there.
    std::vector<std::string> keys(std::string_view section) const;
    /// Every header in file order, duplicates included, as spelled there.
    std::vector<std::string> sections() const;
    bool hasSection(std::string_view section) const;

    /// The text after an existing key's "=" is replaced; a new key follows the last line of its
    /// section that is not blank, a new section the last line. `value` is written as it is: quotes
    /// are the caller's. Refused are a key that could not be read back (empty, with blanks at its
    /// ends, with "=" or a control character, beginning as a comment or a header) and a file whose
    /// bytes the code page cannot give back.
    Edit setValue(const std::string& section, const std::string& key, const std::string& value);
    Edit deleteKey(const std::string& section, const std::string& key);
    /// Deletes the header and all lines below it but the comments right above the next header.
    Edit deleteSection(const std::string& section);
    /// The headers get another name, everything else stays. Refused when a section has it already,
    /// unless both are one name.
    Edit renameSection(const std::string& from, const std::string& to);
    /// A new section at the end gets every key of `from`, but those that `leavesOut` says, as they
    /// are written there. Refused when there is such a section.
    Edit copySection(const std::string& from, const std::string& to,
                     const std::function<bool(const std::string& key)>& leavesOut);

  private:
    enum class Encoding { ansi, utf8, utf16 };

    /// Offsets into bytes_ of one line: of its first byte, of its line end, of the line after.
    struct Line {
        std::size_t begin;
        std::size_t end;
        std::size_t next;
    };
    using KeyLines = std::unordered_map<std::string, std::uint32_t>;
    struct Section {
        std::string name;
        std::uint32_t header;  // offset of its header line
        std::uint32_t end;     // offset of the next header, or of the end
        /// Offset of the first line of each key, by its name in lower case; made at the first
        /// question. A configuration is read key by key, and may have thousands.
        mutable std::optional<KeyLines> keys = std::nullopt;
    };
    /// What belongs to a section: everything but the comments right above the next header.
    struct Extent {
        std::size_t end;
        std::size_t lastText;  // offset after its last line that is not blank
    };

    Line lineAt(std::size_t begin) const;
    std::string textOf(const Line& line) const;
    bool mayBeHeader(const Line& line) const;
    const Section* find(std::string_view section) const;
    bool findKey(const Section& section, std::string_view key, Line& line) const;
    const KeyLines& keysOf(const Section& section) const;
    Extent extentOf(const Section& section) const;

    std::string decode(const std::string& bytes) const;
    std::string encode(const std::string& text) const;
    bool holds(const std::string& text) const;
    bool makeRoomFor(const std::string& text);
    bool isUnmarkedUtf8() const;
    void becomeUtf16(const std::string& whole);
    Edit finishEdit();
    void insertLine(std::size_t at, const std::string& text);
    void index();

    const AnsiCodec* ansi_;
    std::string bytes_;
    Encoding encoding_ = Encoding::ansi;
    std::size_t start_ = 0;  // after the byte-order mark
    std::string lineEnd_ = "\r\n";
    std::vector<Section> sections_;
};

}  // namespace coffrelune
