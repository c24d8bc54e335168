#include "settings/settings_file.h"

#include <utility>

#include "system/text.h"

namespace coffrelune {
namespace {

// Far beyond any settings; keeps a file that took its place from filling the memory.
constexpr std::uint64_t largestFile = std::uint64_t{16} << 20;

bool sameFile(const FileEntry& a, const FileEntry& b) {
    return a.size == b.size && a.times.lastWrite == b.times.lastWrite && a.id == b.id;
}

}  // namespace

SettingsFile::SettingsFile(FileService& files, const AnsiCodec& ansi, std::string path)
    : files_(files), path_(std::move(path)), text_(ansi) {}

Status SettingsFile::status() {
    refresh();
    return status_;
}

std::string SettingsFile::read(const std::string& section, const std::string& key) {
    refresh();
    return firstCharacters(text_.value(section, key), longestValue);
}

// Every edit starts from what is on the disk now: the stamp may hide a change made by hand within
// the same tick of the file system's clock, and writing over it would lose it.
Status SettingsFile::write(const std::string& section, const std::string& key,
                           const std::string& value) {
    load();
    if (!status_.ok()) return status_;
    return finish(text_.setValue(section, key, value));
}

Status SettingsFile::deleteKey(const std::string& section, const std::string& key) {
    load();
    if (!status_.ok()) return status_;
    return finish(text_.deleteKey(section, key));
}

Status SettingsFile::deleteSection(const std::string& section) {
    load();
    if (!status_.ok()) return status_;
    return finish(text_.deleteSection(section));
}

Status SettingsFile::renameSection(const std::string& from, const std::string& to) {
    load();
    if (!status_.ok()) return status_;
    return finish(text_.renameSection(from, to));
}

Status SettingsFile::copySection(const std::string& from, const std::string& to,
                                 const std::function<bool(const std::string& key)>& leavesOut) {
    load();
    if (!status_.ok()) return status_;
    return finish(text_.copySection(from, to, leavesOut));
}

std::vector<std::string> SettingsFile::keys(const std::string& section) {
    refresh();
    return text_.keys(section);
}

std::vector<std::string> SettingsFile::sections() {
    refresh();
    return text_.sections();
}

bool SettingsFile::hasSection(const std::string& section) {
    refresh();
    return text_.hasSection(section);
}

void SettingsFile::refresh() {
    if (path_.empty()) return;
    FileEntry entry;
    const Status found = files_.lookUp(path_, LinkRule::follow, entry);
    if (!loaded_ || !found.ok() || !sameFile(entry, stamp_)) load();
}

void SettingsFile::load() {
    if (path_.empty()) return;
    FileEntry entry;
    std::string bytes;
    // The stamp is taken first: a change made while the file is read is then seen the next time.
    status_ = files_.lookUp(path_, LinkRule::follow, entry);
    const bool missing = status_.saysAbsent();
    // A file that was there a moment ago is not taken for none, which would be written anew.
    if (status_.ok()) status_ = files_.readWhole(path_, largestFile, bytes);
    if (missing) status_ = Status();
    loaded_ = status_.ok() && !missing;
    stamp_ = std::move(entry);
    if (!status_.ok()) bytes.clear();
    if (!text_.parse(std::move(bytes))) {
        status_ = Status::failure(error_number::invalidData, path_);
    }
}

Status SettingsFile::finish(SettingsText::Edit edit) {
    if (edit == SettingsText::Edit::none || path_.empty()) return {};
    // From here on the text in memory is not known to be that of the file.
    loaded_ = false;
    if (edit == SettingsText::Edit::refused) {
        return Status::failure(error_number::invalidParameter, path_);
    }
    if (text_.serialise().size() > largestFile) {
        return Status::failure(error_number::fileTooLarge, path_);
    }
    return files_.writeWhole(path_, text_.serialise(), Durability::now);
}

}  // namespace coffrelune
