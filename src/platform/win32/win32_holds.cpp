#include "platform/win32/win32_holds.h"

#include "platform/win32/entry_query.h"
#include "platform/win32/tree_place.h"

namespace coffrelune {
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
    return hold_ == nullptr ? 0 : hold_->flush->dataWritten(file);
}

// With the temporary in it the directory is not empty, and can become a junction no more.
std::uint32_t HeldWriteGuard::mayGetItsName() {
    return hold_ == nullptr ? 0 : hold_->root.checkEnd();
}

void HeldWriteGuard::named(void* file) {
    if (hold_ != nullptr) hold_->flush->named(file);
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
