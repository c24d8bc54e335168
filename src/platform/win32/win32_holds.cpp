#include "platform/win32/win32_holds.h"

#include <windows.h>

#include <algorithm>

#include "platform/names.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/time_stamps.h"
#include "platform/win32/volumes.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

// How many processes can read one tree at a time. A name is either taken or free and cannot count:
// each reader takes a seat, so that a writer of the same process can leave its own out.
constexpr unsigned seats = 32;

std::wstring hexadecimal(std::uint64_t number) {
    std::wstring digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits += L"0123456789abcdef"[number >> shift & 15];
    return digits;
}

std::wstring writerName(const std::wstring& tree) {
    return L"Coffrelune-ecriture-" + tree;
}

std::wstring readerName(const std::wstring& tree, unsigned seat) {
    return L"Coffrelune-lecture-" + tree + L"-" + std::to_wstring(seat);
}

enum class Taken { byUs, byAnother, no };

/// For every session of the computer, or for this one where the system allows no more.
Taken takeName(const std::wstring& name, UniqueHandle& object) {
    for (const wchar_t* scope : {L"Global\\", L"Local\\"}) {
        SetLastError(ERROR_SUCCESS);
        object = UniqueHandle(CreateEventW(nullptr, TRUE, FALSE, (scope + name).c_str()));
        const DWORD error = GetLastError();
        if (object.valid() && error != ERROR_ALREADY_EXISTS) return Taken::byUs;
        object.reset();
        // Another user's object is there and may not be opened.
        if (error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED) return Taken::byAnother;
    }
    return Taken::no;
}

bool isTaken(const std::wstring& name) {
    for (const wchar_t* scope : {L"Global\\", L"Local\\"}) {
        const UniqueHandle object(OpenEventW(SYNCHRONIZE, FALSE, (scope + name).c_str()));
        if (object.valid() || GetLastError() == ERROR_ACCESS_DENIED) return true;
    }
    return false;
}

std::wstring lockPath(const NativePath& directory) {
    return directory.child(wide(ownFileName(OwnFile::lock, 0))).text;
}

/// A volume that does not let it be made is used without.
std::uint32_t makeLockFile(const NativePath& directory, UniqueHandle& file) {
    file = UniqueHandle(CreateFileW(lockPath(directory).c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE,
                                    nullptr));
    const bool inUse = !file.valid() && GetLastError() == ERROR_SHARING_VIOLATION;
    return inUse ? ERROR_LOCK_VIOLATION : 0;
}

/// A lock file that can be opened is what a run left that ended with its computer.
std::uint32_t lookForLockFile(const NativePath& directory) {
    const UniqueHandle file = openShared(lockPath(directory), GENERIC_READ, 0);
    const bool inUse = !file.valid() && GetLastError() == ERROR_SHARING_VIOLATION;
    return inUse ? ERROR_LOCK_VIOLATION : 0;
}

// Each side shows itself first and looks for the other afterwards: of two that come at the same
// time at least one sees the other.

std::uint32_t startReading(const NativePath& directory, bool named, bool writesToo,
                           Win32Claim& claim) {
    for (; named; ++claim.seat) {
        if (claim.seat == seats) return ERROR_LOCK_VIOLATION;
        const std::wstring name = readerName(claim.tree, claim.seat);
        if (takeName(name, claim.object) != Taken::byAnother) break;
    }
    if (writesToo) return 0;
    if (named && isTaken(writerName(claim.tree))) return ERROR_LOCK_VIOLATION;
    return lookForLockFile(directory);
}

std::uint32_t startWriting(const NativePath& directory, bool named, const Win32Claim* reader,
                           Win32Claim& claim) {
    if (named && takeName(writerName(claim.tree), claim.object) == Taken::byAnother) {
        return ERROR_LOCK_VIOLATION;
    }
    const std::uint32_t error = makeLockFile(directory, claim.lockFile);
    if (error != 0) return error;
    for (unsigned seat = 0; named && seat < seats; ++seat) {
        const bool own = reader != nullptr && reader->object.valid() && reader->seat == seat;
        if (!own && isTaken(readerName(claim.tree, seat))) return ERROR_LOCK_VIOLATION;
    }
    return 0;
}

}  // namespace

std::uint32_t Win32Claims::claim(const FileId& id, const NativePath& directory, TreeUse use,
                                 std::shared_ptr<Win32Claim>& claim) {
    const bool named = id.known();
    const std::wstring tree =
        named ? hexadecimal(id.volume) + hexadecimal(id.file) : directory.text;
    std::shared_ptr<Win32Claim> made = ownClaim(tree, use);
    if (made == nullptr) {
        made = std::make_shared<Win32Claim>();
        made->tree = tree;
        made->use = use;
        const auto reader = ownClaim(tree, TreeUse::read);
        const auto writer = ownClaim(tree, TreeUse::write);
        const std::uint32_t error = use == TreeUse::read
                                        ? startReading(directory, named, writer != nullptr, *made)
                                        : startWriting(directory, named, reader.get(), *made);
        if (error != 0) return error;
        std::erase_if(own_, [](const auto& one) { return one.expired(); });
        own_.push_back(made);
    }
    claim = std::move(made);
    return 0;
}

std::shared_ptr<Win32Claim> Win32Claims::ownClaim(const std::wstring& tree, TreeUse use) const {
    for (const std::weak_ptr<Win32Claim>& one : own_) {
        auto claim = one.lock();
        if (claim != nullptr && claim->tree == tree && claim->use == use) return claim;
    }
    return nullptr;
}

namespace {

Status statusOf(std::uint32_t error, const std::string& core) {
    return error == 0 ? Status() : Status::failure(error, core);
}

class Win32HeldTree final : public HeldTree {
  public:
    Win32HeldTree(std::string core, std::shared_ptr<Win32Hold> hold,
                  std::shared_ptr<Win32Claims> claims)
        : core_(std::move(core)),
          hold_(std::move(hold)),
          claims_(std::move(claims)),
          place_(placeOf(hold_->root.handle())) {}

    const TreePlace& place() const override { return place_; }

    Status claim(TreeUse use) override {
        // A writer stays one: its file and its name are what tells the others.
        if (claim_ != nullptr && claim_->use == TreeUse::write) return {};
        FileEntry entry;
        std::uint32_t error = queryOpenFile(hold_->root.handle(), entry);
        if (error == 0) error = claims_->claim(entry.id, hold_->root.path(), use, claim_);
        return statusOf(error, core_);
    }

    Status flush() override { return statusOf(hold_->flush->flush(), core_); }

    Status measureTimes(TimeGrid& grid) override {
        TemporaryFile probe;
        const std::uint32_t error = probe.create(hold_->root.path());
        if (error != 0) return statusOf(error, core_);
        const auto measured = coffrelune::measureTimes(timeTrialOn(probe.handle()));
        if (!measured) return statusOf(ERROR_NOT_SUPPORTED, core_);
        grid = *measured;
        return {};
    }

  private:
    std::string core_;
    std::shared_ptr<Win32Hold> hold_;
    std::shared_ptr<Win32Claims> claims_;
    std::shared_ptr<Win32Claim> claim_;
    TreePlace place_;
};

}  // namespace

bool Win32Place::isHeldRoot() const {
    return hold != nullptr && path.text == hold->root.path().text;
}

std::uint32_t Win32Place::checkWay() const {
    return hold == nullptr || isHeldRoot() ? 0 : hold->root.walkTo(path.holder());
}

std::uint32_t Win32Place::checkWhole() const {
    return hold == nullptr ? 0 : hold->root.walkTo(path);
}

void Win32Place::expectWrite() const {
    if (hold != nullptr) hold->flush->expectWrite(hold->root.path(), hold->root.handle());
}

std::uint32_t HeldWriteGuard::dataWritten(void* file) {
    return isSafeAtOnce_ ? flushed(file) : hold_->flush->dataWritten(file);
}

// With the temporary in it the directory is not empty, and can become a junction no more.
std::uint32_t HeldWriteGuard::mayGetItsName() {
    return hold_ == nullptr ? 0 : hold_->root.checkEnd();
}

std::uint32_t HeldWriteGuard::named(void* file) {
    if (isSafeAtOnce_) return flushed(file);
    hold_->flush->named(file);
    return 0;
}

Status Win32Holds::take(const std::string& core, std::unique_ptr<HeldTree>& held) {
    Win32Place place;
    Status status = locate(core, place);
    if (!status.ok()) return status;
    NativePath asked;
    status = toNative(core, asked);
    auto hold = std::make_shared<Win32Hold>();
    const std::uint32_t error = hold->root.open(place.path, asked);
    if (error != 0) return failureAt(error, place.path, core);
    hold->flush = flushOf(hold->root.path());
    std::erase_if(holds_, [](const auto& one) { return one.expired(); });
    holds_.push_back(hold);
    held = std::make_unique<Win32HeldTree>(core, std::move(hold), claims_);
    return status;
}

std::shared_ptr<VolumeFlush> Win32Holds::flushOf(const NativePath& root) const {
    const auto top = std::wstring_view(root.text).substr(0, root.rootLength);
    for (const std::weak_ptr<Win32Hold>& one : holds_) {
        const auto hold = one.lock();
        if (hold != nullptr && hold->root.path().rootLength == top.size() &&
            hold->root.path().text.starts_with(top)) {
            return hold->flush;
        }
    }
    return std::make_shared<VolumeFlush>();
}

Status Win32Holds::locate(const std::string& core, Win32Place& place) const {
    Status status = toNative(core, place.path);
    if (!status.ok()) return status;
    for (const std::weak_ptr<Win32Hold>& one : holds_) {
        const auto hold = one.lock();
        if (hold == nullptr || !hold->root.covers(place.path)) continue;
        const bool outer =
            place.hold != nullptr && hold->root.askedLength() < place.hold->root.askedLength();
        if (!outer) place.hold = hold;
    }
    if (place.hold != nullptr) place.path = place.hold->root.placeOf(place.path);
    return status;
}

}  // namespace coffrelune
