#pragma once

#include <string>

#include "platform/desktop_services.h"
#include "platform/posix/drive_table.h"

namespace coffrelune {

/// The Run key as desktops know it: the value "Coffrelune" of the user is the file
/// "Coffrelune.desktop" among the entries that are started at logon. There is no other key (2), no
/// other value (50), and what starts for everyone is the administrator's (5).
/// https://specifications.freedesktop.org/autostart-spec/latest/
class AutostartEntry final : public RegistryService {
  public:
    /// `table` is not owned and must outlive this object. `directory`: native, of the user's
    /// autostart entries; made when the first one is written. An empty one stands for a user
    /// without a home: no entry can be written (3) and there is none (2).
    AutostartEntry(const DriveTable& table, std::string directory)
        : table_(table), directory_(std::move(directory)) {}

    /// `data`: the program's path in the core's form. An ".exe" at its end is dropped where only
    /// the file without it exists. The entry is replaced as a whole.
    Status setText(Root root, const std::string& key, const std::string& name,
                   const std::string& data) override;
    /// 2 when there is no entry.
    Status deleteValue(Root root, const std::string& key, const std::string& name) override;

  private:
    std::string file() const;

    const DriveTable& table_;
    std::string directory_;
};

/// A program's path as the value of an entry's Exec key: one quoted argument, escaped as an
/// argument, as a field code, and then as a text of the file.
std::string execValue(const std::string& native);

}  // namespace coffrelune
