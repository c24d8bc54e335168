#include "platform/posix/posix_platform.h"

#include "platform/posix/native_path.h"

namespace coffrelune {

PosixPlatform::PosixPlatform(const PosixOptions& options)
    : table_(options.mounts, joinNative(options.settingsDirectory, "Lecteurs.ini"), options.probe),
      files_(table_, options.mounts, locks_),
      drives_(table_),
      guard_(table_, locks_) {}

PosixPlatform::PosixPlatform(std::vector<PathRoot> roots, std::set<dev_t> pseudoDevices,
                             Descent descent, const MountSources& mounts)
    : table_(std::move(roots), std::move(pseudoDevices)),
      files_(table_, mounts, locks_, descent),
      drives_(table_),
      guard_(table_, locks_) {}

}  // namespace coffrelune
