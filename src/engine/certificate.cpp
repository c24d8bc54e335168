#include "engine/certificate.h"

#include <charconv>
#include <string_view>

#include "platform/names.h"
#include "settings/encoding.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

constexpr std::string_view heading = "Coffrelune 1";
constexpr std::string_view ending = "fin";
constexpr std::uint64_t largest = 16 << 20;  // bytes; a list of exclusions may be long

void addLine(std::string& text, std::string_view key, const std::string& value) {
    text.append(key).append("=").append(escapeCharacters(value, lineBreakers)).append("\n");
}

bool readNumber(const std::string& value, std::uint64_t& number) {
    const char* end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, number);
    return error == std::errc() && last == end;
}

void addTimes(std::string& text, const TimeGrid& times) {
    constexpr TimeGrid exact;
    if (times.step != exact.step) addLine(text, "pas-des-dates", std::to_string(times.step));
    if (times.earliest != exact.earliest) {
        addLine(text, "premiere-date", std::to_string(times.earliest));
    }
    if (times.latest != exact.latest) {
        addLine(text, "derniere-date", std::to_string(times.latest));
    }
}

// 0 is no step.
bool readTimes(TimeGrid& times, std::string_view key, const std::string& value) {
    if (key == "pas-des-dates") return readNumber(value, times.step) && times.step != 0;
    if (key == "premiere-date") return readNumber(value, times.earliest);
    return key == "derniere-date" && readNumber(value, times.latest);
}

bool readMode(const std::string& value, ExclusionList& list) {
    std::int32_t mode = 0;
    const char* end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, mode);
    list.mode = static_cast<ExclusionMode>(mode);
    return error == std::errc() && last == end;
}

// False for a key that this program does not know: what it says might forbid a deletion.
bool takeLine(Certificate& certificate, std::string_view key, const std::string& value) {
    if (key == "original") {
        certificate.original = value;
    } else if (key == "volume") {
        certificate.volume = value;
    } else if (key == "chemin") {
        certificate.pathOnVolume = value;
    } else if (key == "copie") {
        certificate.copy = value;
    } else if (key == "sous-repertoires") {
        return readMode(value, certificate.exclusions);
    } else if (key == "exclu") {
        certificate.exclusions.directories.push_back(value);
    } else if (key == "montage") {
        certificate.mounts.push_back(value);
    } else if (key == "etat") {
        certificate.complete = value == "complete";
    } else {
        return readTimes(certificate.times, key, value);
    }
    return true;
}

// Takes the first line off.
std::string_view nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

void readCertificateFile(FileService& files, const std::string& directory, const std::string& name,
                         DirectoryMarks& marks) {
    std::string text;
    const Status read = files.readWhole(joinPath(directory, name), largest, text);
    std::optional<Certificate> certificate;
    if (read.ok()) certificate = readCertificate(text);
    const bool isForeign = read.code() == error_number::accessDenied ||
                           read.code() == error_number::fileTooLarge || read.saysAbsent();
    if (!read.ok() && !isForeign && marks.failure.ok()) marks.failure = read;
    if (certificate) {
        marks.certificates.push_back({name, std::move(*certificate)});
    } else {
        marks.unreadable.push_back(name);
    }
}

}  // namespace

std::string certificateText(const Certificate& certificate) {
    std::string text = std::string(heading) + "\n";
    addLine(text, "etat", certificate.complete ? "complete" : "inachevee");
    addLine(text, "original", certificate.original);
    addLine(text, "volume", certificate.volume);
    addLine(text, "chemin", certificate.pathOnVolume);
    addLine(text, "copie", certificate.copy);
    addLine(text, "sous-repertoires",
            std::to_string(static_cast<std::int32_t>(certificate.exclusions.mode)));
    for (const std::string& entry : certificate.exclusions.directories) {
        addLine(text, "exclu", entry);
    }
    for (const std::string& mount : certificate.mounts) addLine(text, "montage", mount);
    addTimes(text, certificate.times);
    return text.append(ending).append("\n");
}

std::optional<Certificate> readCertificate(const std::string& text) {
    std::string_view rest = text;
    if (nextLine(rest) != heading) return {};
    Certificate certificate;
    while (!rest.empty()) {
        const std::string_view line = nextLine(rest);
        if (line == ending) {
            if (!rest.empty() || certificate.original.empty()) return {};
            return certificate;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) return {};
        const std::string value = unescapeCharacters(line.substr(equals + 1), lineBreakers);
        if (!takeLine(certificate, line.substr(0, equals), value)) return {};
    }
    return {};
}

// FNV-1a (http://www.isthe.com/chongo/tech/comp/fnv/).
std::uint64_t placeNumber(const std::string& path) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : path) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001B3;
    }
    return hash;
}

Status readMarks(FileService& files, const std::string& directory, DirectoryMarks& marks) {
    marks = {};
    std::vector<std::string> names;
    Status listed = files.ownFiles(directory, names);
    if (!listed.ok()) return listed;
    for (const std::string& name : names) {
        const std::optional<OwnFile> kind = ownFileKind(name);
        if (kind == OwnFile::restoreMark) marks.restoreMarks.push_back(name);
        if (kind == OwnFile::certificate) readCertificateFile(files, directory, name, marks);
    }
    return {};
}

std::vector<std::string> ancestorsOf(const std::string& path) {
    std::vector<std::string> ancestors;
    std::string place = withoutTrailingBackslash(path);
    while (!isDriveRoot(withTrailingBackslash(place))) {
        const SplitPath split = splitPath(place);
        if (split.last.empty() || split.parent == place || split.parent == R"(\\)") break;
        place = isDriveRoot(split.parent) ? split.parent : withoutTrailingBackslash(split.parent);
        ancestors.push_back(place);
    }
    return ancestors;
}

}  // namespace coffrelune
