#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/file_entry.h"
#include "platform/held_tree.h"
#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

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

}  // namespace coffrelune
