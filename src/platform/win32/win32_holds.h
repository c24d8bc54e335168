#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/win32/held_root.h"
#include "platform/win32/native_path.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/unique_handle.h"
#include "platform/win32/volumes.h"

namespace coffrelune {

/// A use of a tree that other processes see, until this goes.
///
/// Named objects tell the processes of this computer of each other. Those of others meet at a lock
/// file in the directory, which only a writer makes: nothing is written into a tree that is read.
struct Win32Claim {
    std::wstring tree;
    TreeUse use = TreeUse::read;
    unsigned seat = 0;  // of a reader
    UniqueHandle object;
    UniqueHandle lockFile;  // of a writer
};

/// The uses that this process makes of trees. Two of its own on one tree never meet.
class Win32Claims {
  public:
    /// `id` and `directory`: of the tree. 0, or 33 when another process is in the way.
    std::uint32_t claim(const FileId& id, const NativePath& directory, TreeUse use,
                        std::shared_ptr<Win32Claim>& claim);

  private:
    std::shared_ptr<Win32Claim> ownClaim(const std::wstring& tree, TreeUse use) const;

    std::vector<std::weak_ptr<Win32Claim>> own_;
};

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

/// Of a file that is written at a place. Outside every hold nobody flushes the volume later: what
/// is written there is safe at once, whatever the durability.
class HeldWriteGuard final : public WriteGuard {
  public:
    HeldWriteGuard(const Win32Place& place, Durability durability)
        : hold_(place.hold), isSafeAtOnce_(!place.hold || durability == Durability::now) {}

    std::uint32_t dataWritten(void* file) override;
    std::uint32_t mayGetItsName() override;
    std::uint32_t named(void* file) override;

  private:
    std::shared_ptr<Win32Hold> hold_;
    bool isSafeAtOnce_;
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
