#include "platform/win32/volumes.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "platform/win32/data_copier.h"
#include "platform/win32/native_path.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

std::uint64_t joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32 | low;
}

std::string hexadecimal(std::uint64_t number) {
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llX", static_cast<unsigned long long>(number));
    return digits.data();
}

/// What the system tells of an open directory; zeros for what it does not.
struct Facts {
    std::uint64_t serial = 0;
    std::string number;
    std::uint64_t creation = 0;
};

Facts factsOf(void* directory) {
    Facts facts;
    BY_HANDLE_FILE_INFORMATION information;
    if (GetFileInformationByHandle(directory, &information) != 0) {
        facts.serial = information.dwVolumeSerialNumber;
        facts.creation = joined(information.ftCreationTime.dwHighDateTime,
                                information.ftCreationTime.dwLowDateTime);
        const std::uint64_t index = joined(information.nFileIndexHigh, information.nFileIndexLow);
        if (index != 0) facts.number = hexadecimal(index);
    }
    FILE_ID_INFO id;
    if (GetFileInformationByHandleEx(directory, FileIdInfo, &id, sizeof id) == 0) return facts;
    if (id.VolumeSerialNumber != 0) facts.serial = id.VolumeSerialNumber;
    const auto* const bytes = id.FileId.Identifier;
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    for (std::size_t i = 8; i-- > 0;) {
        low = low << 8 | bytes[i];
        high = high << 8 | bytes[8 + i];
    }
    if (high != 0 || low != 0)
        facts.number = (high == 0 ? "" : hexadecimal(high)) + hexadecimal(low);
    return facts;
}

/// The number as the tools of other systems write it: "0123456789ABCDEF", "1234-ABCD".
std::string volumeName(std::uint64_t serial, VolumeKind kind) {
    if (serial == 0) return {};
    const std::string digits = hexadecimal(serial);
    if (kind == VolumeKind::fat) return "uuid:" + digits.substr(8, 4) + "-" + digits.substr(12);
    return (kind == VolumeKind::ntfs ? "uuid:" : "volume:") + digits;
}

/// "\\server\share" as "share://server/share".
std::string shareName(const NativePath& path) {
    std::string share = toCore(std::wstring_view(path.text).substr(0, path.rootLength));
    while (share.ends_with('\\')) share.pop_back();
    std::replace(share.begin(), share.end(), '\\', '/');
    return "share:" + share;
}

}  // namespace

TreePlace placeOf(void* directory) {
    TreePlace place;
    std::wstring text = finalPathOnVolume(directory);
    if (text.empty()) text = finalPath(directory);
    NativePath path;
    if (!toNative(narrow(text), path).ok()) return place;
    const Facts facts = factsOf(directory);
    const VolumeKind kind = volumeKindOf(directory);
    const std::string serial = volumeName(facts.serial, kind);
    place.volume = isOnShare(path) ? shareName(path) : serial;
    place.path = "\\" + narrow(std::wstring_view(path.text).substr(path.rootLength));
    const std::string& distinct = kind == VolumeKind::fat ? place.path : facts.number;
    if (serial.empty() || distinct.empty()) return place;
    place.self = serial + ":" + distinct;
    // What is found at that place or under that number later may be another directory. NTFS never
    // gives a number again: it alone needs no time, which some systems show otherwise each day.
    if (kind != VolumeKind::ntfs) place.self += ":" + hexadecimal(facts.creation);
    return place;
}

bool isOnShare(const NativePath& path) {
    return path.text.starts_with(LR"(\\?\UNC\)");
}

VolumeKind volumeKindOf(void* handle) {
    std::array<wchar_t, MAX_PATH + 1> name{};
    if (GetVolumeInformationByHandleW(handle, nullptr, 0, nullptr, nullptr, nullptr, name.data(),
                                      static_cast<DWORD>(name.size())) == 0) {
        return VolumeKind::other;
    }
    const std::wstring_view system = name.data();
    if (system == L"NTFS") return VolumeKind::ntfs;
    const bool fat = system.starts_with(L"FAT") || system == L"exFAT";
    return fat ? VolumeKind::fat : VolumeKind::other;
}

namespace {

/// NTFS writes its journal in order: when a file that was made just now is safe, so is every name
/// that was given or taken before.
std::uint32_t flushJournal(const NativePath& directory) {
    TemporaryFile last;
    std::uint32_t error = last.create(directory);
    if (error == 0) error = writeAll(last.handle(), "\n", 1);
    return error == 0 ? flushed(last.handle()) : error;
}

}  // namespace

std::uint32_t flushed(void* file) {
    return FlushFileBuffers(file) != 0 ? 0 : GetLastError();
}

void VolumeFlush::expectWrite(const NativePath& root, void* handle) {
    if (way_ == Way::undecided) decide(root, handle);
    written_ = root;
}

void VolumeFlush::decide(const NativePath& root, void* handle) {
    const bool share = isOnShare(root);
    way_ = !share && volumeKindOf(handle) == VolumeKind::ntfs ? Way::journal : Way::each;
    if (share) return;
    // The name of the volume itself is that of its top without the backslash. Kept open from before
    // the first write; tried at once, because some systems let everybody open it and few flush it:
    // https://learn.microsoft.com/windows/win32/api/fileapi/nf-fileapi-flushfilebuffers
    volume_ = UniqueHandle(
        CreateFileW(root.text.substr(0, root.rootLength - 1).c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (volume_.valid() && flushed(volume_.get()) == 0) {
        way_ = Way::volume;
    } else {
        volume_.reset();
    }
}

std::uint32_t VolumeFlush::dataWritten(void* file) const {
    return way_ == Way::volume ? 0 : flushed(file);
}

void VolumeFlush::named(void* file) {
    if (way_ != Way::each) return;
    const std::uint32_t error = flushed(file);
    if (late_ == 0) late_ = error;
}

std::uint32_t VolumeFlush::flushData() {
    return flushed(volume_.get());
}

std::uint32_t VolumeFlush::flush() {
    if (written_.text.empty()) return 0;
    std::uint32_t error = std::exchange(late_, 0);
    if (way_ == Way::volume) error = flushed(volume_.get());
    if (way_ == Way::journal) error = flushJournal(written_);
    if (error == 0) written_ = {};
    return error;
}

}  // namespace coffrelune
