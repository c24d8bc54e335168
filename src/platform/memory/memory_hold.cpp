#include "platform/memory/memory_hold.h"

#include <algorithm>

#include "platform/memory/memory_node.h"

namespace coffrelune {
namespace {

bool isAtOrBelow(const MemoryPath& path, const MemoryPath& root) {
    return path.root == root.root && path.components.size() >= root.components.size() &&
           std::equal(root.components.begin(), root.components.end(), path.components.begin());
}

}  // namespace

void MemoryHolds::remove(const MemoryHold& hold) {
    std::erase_if(holds_, [&hold](const Known& known) { return known.hold == &hold; });
}

MemoryHold* MemoryHolds::holding(const std::string& path) const {
    if (holds_.empty()) return nullptr;
    const MemoryPath asked = splitMemoryPath(path);
    MemoryHold* innermost = nullptr;
    std::size_t depth = 0;
    for (const auto& [hold, root] : holds_) {
        if (!isAtOrBelow(asked, root) || root.components.size() < depth) continue;
        innermost = hold;
        depth = root.components.size();
    }
    return innermost;
}

std::vector<std::string> belowHold(const MemoryHold& hold, const std::string& path) {
    std::vector<std::string> components = splitMemoryPath(path).components;
    const auto above = splitMemoryPath(hold.root).components.size();
    components.erase(components.begin(), components.begin() + static_cast<std::ptrdiff_t>(above));
    return components;
}

MemoryHeldTree::MemoryHeldTree(MemoryHold hold, TreePlace place, MemoryHolds& holds,
                               std::vector<std::string>& calls)
    : hold_(std::move(hold)), place_(std::move(place)), holds_(holds), calls_(calls) {
    holds_.add(hold_);
}

MemoryHeldTree::~MemoryHeldTree() {
    giveUpClaim();
    holds_.remove(hold_);
}

void MemoryHeldTree::giveUpClaim() {
    std::vector<TreeUser>& claims = hold_.node->claims;
    claims.erase(std::remove_if(claims.begin(), claims.end(),
                                [this](const TreeUser& claim) { return claim.hold == this; }),
                 claims.end());
}

Status MemoryHeldTree::claim(TreeUse use) {
    calls_.push_back("claim " + hold_.root);
    if (!hold_.volume->present) {
        return Status::failure(error_number::deviceDoesNotExist, hold_.root);
    }
    for (const TreeUser& other : hold_.node->claims) {
        // What has been claimed is kept: a writer that reads stays a writer.
        if (other.hold == this && other.use == TreeUse::write) return {};
        const bool agree = use == TreeUse::read && other.use == TreeUse::read;
        if (other.process != &holds_ && !agree) {
            return Status::failure(error_number::lockViolation, hold_.root);
        }
    }
    giveUpClaim();
    hold_.node->claims.push_back({&holds_, this, use});
    return {};
}

Status MemoryHeldTree::flush() {
    calls_.push_back("flush " + hold_.root);
    const MemoryVolume& volume = *hold_.volume;
    const std::uint32_t error =
        volume.present ? volume.flushError : error_number::deviceDoesNotExist;
    return error == 0 ? Status() : Status::failure(error, hold_.root);
}

Status MemoryHeldTree::measureTimes(TimeGrid& grid) {
    calls_.push_back("measureTimes " + hold_.root);
    const MemoryVolume& volume = *hold_.volume;
    const std::uint32_t error = !volume.present         ? error_number::deviceDoesNotExist
                                : volume.writeProtected ? error_number::writeProtect
                                : !volume.keepsTimes    ? error_number::notSupported
                                                        : 0;
    if (error != 0) return Status::failure(error, hold_.root);
    grid = volume.times;
    return {};
}

}  // namespace coffrelune
