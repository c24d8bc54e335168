#pragma once

#include <string>

#include "platform/desktop_services.h"

namespace coffrelune {

/// The registry as the program uses it: the start at logon. Nothing is reported: what the registry
/// refuses is not worth a message, since the settings file remembers the user's choice.
class Registres {
  public:
    static constexpr const char* runKey = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)";
    static constexpr const char* runValue = "Coffrelune";

    /// `registry` must outlive this.
    explicit Registres(RegistryService& registry) : registry_(registry) {}

    /// Has the program started, or no longer started, when the user logs on. `executablePath`: the
    /// running program's file; nothing is started where it is not known (empty).
    void setAutoStart(bool on, const std::string& executablePath);

  private:
    RegistryService& registry_;
};

}  // namespace coffrelune
