#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/held_tree.h"
#include "platform/win32/held_root.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/tree_claim.h"
#include "platform/win32/volume_flush.h"

namespace coffrelune {

/// What lives as long as a hold.
struct Win32Hold {
    HeldRoot root;
    std::shared_ptr<VolumeFlush> flush;  // shared by the holds on one volume
};

/// A path as it is reached.
struct Win32Place {
    NativePath path;
    std::shared_ptr<Win32Hold> hold;  // null outside every hold

    /// The held directory itself: no link, whatever was asked for.
    bool isHeldRoot() const;
    /// See HeldRoot::walkTo, for the directory that holds the path. Success outside every hold.
    std::uint32_t checkWay() const;
    /// The same for the path itself, a directory.
    std::uint32_t checkWhole() const;
    /// Something is about to be written there.
    void expectWrite() const;
};

/// Of a file that is written at a place.
class HeldWriteGuard final : public WriteGuard {
  public:
    explicit HeldWriteGuard(const Win32Place& place) : hold_(place.hold) {}

    std::uint32_t dataWritten(void* file) override;
    std::uint32_t mayGetItsName() override;
    void named(void* file) override;

  private:
    std::shared_ptr<Win32Hold> hold_;
};

/// The holds of this process.
class Win32Holds {
  public:
    Status take(const std::string& core, std::unique_ptr<HeldTree>& held);

    /// 0, or what toNative() says. The way to the place has not been looked at.
    Status locate(const std::string& core, Win32Place& place) const;

  private:
    std::shared_ptr<VolumeFlush> flushOf(const NativePath& root) const;

    std::vector<std::weak_ptr<Win32Hold>> holds_;
    std::shared_ptr<Win32Claims> claims_ = std::make_shared<Win32Claims>();
};

}  // namespace coffrelune
