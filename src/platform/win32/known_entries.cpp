#include "platform/win32/known_entries.h"

#include <windows.h>

#include <algorithm>
#include <limits>

#include "platform/names.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

// To list costs as much as these look-ups: a directory with a few files is not worth it.
constexpr int fewLookUps = 4;
// At a time, so that neither a stop nor the screen waits for a directory of a million entries.
constexpr int entriesAtOnce = 1000;
// What the records can point to; the rest of such a directory is asked for name by name.
constexpr std::size_t mostNameBytes = std::numeric_limits<std::uint32_t>::max() / 2;

/// Hash of the name in one case. The disk takes names for the same whose capitals are the same.
std::size_t hashInCapitals(std::wstring_view name) {
    std::wstring upper(name.size(), L'\0');
    const auto length = static_cast<int>(name.size());
    const int written = LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, name.data(), length,
                                      upper.data(), length, nullptr, nullptr, 0);
    return std::hash<std::wstring_view>()(written == length ? upper : name);
}

/// One that can only be taken for another that differs by its case.
bool isPlain(std::string_view name) {
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    return std::all_of(name.begin(), name.end(), isAscii) && !name.ends_with('.') &&
           !name.ends_with(' ');
}

/// "LETTRE~1.TXT": perhaps the short name of a file that is listed under its long one.
bool mayBeShortName(std::wstring_view name) {
    const std::size_t tilde = name.find(L'~');
    return tilde != std::wstring_view::npos && tilde + 1 < name.size() && name[tilde + 1] >= L'0' &&
           name[tilde + 1] <= L'9';
}

}  // namespace

bool KnownEntries::findFurther(const NativePath& directory, const std::string& name,
                               FileEntry& entry) {
    if (forgottenAll_ || lists(name) || ++unknown_ <= fewLookUps) return false;
    (void)start(directory);  // the look-ups that follow meet what is wrong, and tell
    readOn();
    return find(name, entry);
}

bool KnownEntries::lists(const std::string& name) {
    return !items_.empty() && slotOf(name) != 0;
}

bool KnownEntries::find(const std::string& name, FileEntry& entry) {
    if (forgottenAll_ || !lists(name) || isForgotten(name)) return false;
    const Item& item = items_[slotOf(name) - 1];
    entry = {};
    entry.name = name;
    entry.attributes = item.attributes;
    entry.size = item.size;
    entry.times = item.times;
    return true;
}

// What was written may have got any short name, and a volume may take other names for the same than
// those that differ by their case: letters of other alphabets, a dot at the end.
bool KnownEntries::lacks(const std::string& name) const {
    if (!empty_ || name.find('~') != std::string::npos) return false;
    return forgotten_.empty() || (isPlain(name) && !isForgotten(name));
}

void KnownEntries::forget(std::wstring_view name) {
    forgotten_.insert(hashInCapitals(name));
    forgottenAll_ = forgottenAll_ || mayBeShortName(name);
}

bool KnownEntries::isForgotten(const std::string& name) const {
    return !forgotten_.empty() && forgotten_.contains(hashInCapitals(wide(name)));
}

std::uint32_t KnownEntries::readNow(const NativePath& directory,
                                    std::shared_ptr<MetDirectories> met) {
    met_ = std::move(met);
    unknown_ = fewLookUps;
    const std::uint32_t error = start(directory);
    readOn();
    return error;
}

std::uint32_t KnownEntries::start(const NativePath& directory) {
    if (open_) return 0;
    open_ = true;
    const std::uint32_t error = listing_.open(directory, L"*");
    closed_ = error != 0;
    return error;
}

// An error ends the listing: the look-ups that follow meet it, and tell.
void KnownEntries::readOn() {
    if (closed_) return;
    FileEntry entry;
    for (int read = 0; read < entriesAtOnce && !closed_; ++read) {
        closed_ = names_.size() > mostNameBytes || !listing_.next(entry);
        if (!closed_ && entry.name != "." && entry.name != "..") add(entry);
    }
    if (!closed_) return;
    empty_ = items_.empty() && listing_.error() == 0 && !listing_.leftSomethingOut();
    listing_.close();
}

void KnownEntries::add(const FileEntry& entry) {
    if (isOwnEntry(entry.name, entry.isDirectory())) return;
    if (met_ != nullptr && entry.isDirectory() && !entry.isLink()) met_->insert(entry.name);
    if (slots_.size() < 2 * (items_.size() + 1)) grow();
    std::uint32_t& slot = slotOf(entry.name);
    if (slot != 0) return;
    Item item{entry.size, entry.times, entry.attributes, static_cast<std::uint32_t>(names_.size()),
              static_cast<std::uint32_t>(entry.name.size())};
    names_ += entry.name;
    items_.push_back(item);
    slot = static_cast<std::uint32_t>(items_.size());
}

void KnownEntries::grow() {
    constexpr std::size_t first = 64;
    slots_.assign(slots_.empty() ? first : 2 * slots_.size(), 0);
    for (std::size_t i = 0; i < items_.size(); ++i) {
        slotOf(nameOf(items_[i])) = static_cast<std::uint32_t>(i + 1);
    }
}

/// The slot that holds the name, or the free one where it would go.
std::uint32_t& KnownEntries::slotOf(std::string_view name) {
    std::size_t at = std::hash<std::string_view>()(name) & (slots_.size() - 1);
    while (slots_[at] != 0 && nameOf(items_[slots_[at] - 1]) != name) {
        at = (at + 1) & (slots_.size() - 1);
    }
    return slots_[at];
}

std::string_view KnownEntries::nameOf(const Item& item) const {
    return std::string_view(names_).substr(item.nameStart, item.nameLength);
}

}  // namespace coffrelune
