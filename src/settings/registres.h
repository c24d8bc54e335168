#pragma once

#include <cstdint>
#include <string>

#include "platform/desktop_services.h"

namespace coffrelune {

/// The registry as the program uses it: values of keys that exist are set and deleted, no key is
/// ever made. Nothing is reported: what the registry refuses is not worth a message, since the
/// settings file remembers the user's choice.
class Registres {
  public:
    static constexpr const char* runKey = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)";
    static constexpr const char* runValue = "Coffrelune";

    /// `registry` must outlive this.
    explicit Registres(RegistryService& registry) : registry_(registry) {}

    /// Type 1 writes the text, type 4 the number that `data` begins with, as 32 bits; any other
    /// type writes nothing.
    void setValue(RegistryService::Root root, const std::string& key, const std::string& name,
                  std::uint32_t type, const std::string& data);
    void deleteValue(RegistryService::Root root, const std::string& key, const std::string& name);

    /// Has the program started, or no longer started, when the user logs on. `executablePath`: the
    /// running program's file; nothing is started where it is not known (empty).
    void setAutoStart(bool on, const std::string& executablePath);

  private:
    RegistryService& registry_;
};

}  // namespace coffrelune
