#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/status.h"
#include "platform/task_scheduler.h"

namespace coffrelune {

/// What the desktop does for its programs. Nothing here reports a failure to the user: a missing
/// program or service does nothing.
class ShellService {
  public:
    virtual ~ShellService() = default;

    /// Opens a file, a program (with its parameters when not empty) or an address with what the
    /// desktop has for it; does not wait. The core's path form, or an address.
    virtual void open(const std::string& target, const std::string& parameters) = 0;
    /// The desktop's own properties window of a file, directory or drive.
    virtual void showProperties(const std::string& path) = 0;
    /// False where the desktop has no window of scheduled tasks.
    virtual bool hasTaskScheduler() { return true; }
    /// The desktop's window of scheduled tasks, where one is known.
    virtual void openTaskScheduler() = 0;
    /// A short message of the desktop's own, which waits for nobody.
    virtual void notify(const std::string& title, const std::string& text) = 0;
    /// Plays a sound of the system by its name ("SystemStart"), asynchronously.
    virtual void playSystemSound(const std::string& name) = 0;
};

/// What the user's desktop knows of one drive.
struct DriveDescription {
    std::string displayName;  // "Disque local (C:)"
    std::string typeName;     // "Disque local"
    std::string iconName;     // for the peer; equal names are one picture
};

class DriveInformation {
  public:
    virtual ~DriveInformation() = default;

    /// Label of the medium in the drive `root` ("D:\"); fails without one. May be empty.
    virtual Status volumeLabel(const std::string& root, std::string& label) = 0;
    virtual DriveDescription describe(const std::string& root) = 0;
    /// Total and free bytes; fails when the drive cannot be read.
    virtual Status sizes(const std::string& root, std::uint64_t& total, std::uint64_t& free) = 0;
};

/// The registry, or what stands for its Run key: the user's autostart entries on Linux.
class RegistryService {
  public:
    enum class Root { currentUser, localMachine };

    virtual ~RegistryService() = default;

    /// Sets a text of an existing key; a key that does not exist is never created.
    virtual Status setText(Root root, const std::string& key, const std::string& name,
                           const std::string& data) = 0;
    virtual Status deleteValue(Root root, const std::string& key, const std::string& name) = 0;
};

/// The services that windows need besides those of Platform. Outlive everything that holds this.
struct Desktop {
    ShellService& shell;
    DriveInformation& driveInformation;
    RegistryService& registry;
    TaskScheduler* tasks = nullptr;  // null where nothing can be planned
};

}  // namespace coffrelune
