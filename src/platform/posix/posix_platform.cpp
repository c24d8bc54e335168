#include "platform/posix/posix_platform.h"

#include "platform/posix/native_path.h"

namespace coffrelune {

PosixPlatform::PosixPlatform(const PosixOptions& options)
    : table_(options.mounts, joinNative(options.settingsDirectory, "Lecteurs.ini"), options.probe),
      files_(table_),
      drives_(table_),
      guard_(table_) {}

PosixPlatform::PosixPlatform(std::vector<PathRoot> roots, std::set<dev_t> pseudoDevices)
    : table_(std::move(roots), std::move(pseudoDevices)),
      files_(table_),
      drives_(table_),
      guard_(table_) {}

}  // namespace coffrelune
