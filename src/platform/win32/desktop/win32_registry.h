#pragma once

#include <string>

#include "platform/desktop_services.h"

namespace coffrelune {

/// The registry. Keys are opened for all access, as the machine's own Run key is only for those
/// who may change it.
class Win32Registry final : public RegistryService {
  public:
    /// The length that is handed over is that of the text alone, without a terminating NUL.
    Status setText(Root root, const std::string& key, const std::string& name,
                   const std::string& data) override;
    Status deleteValue(Root root, const std::string& key, const std::string& name) override;
};

}  // namespace coffrelune
