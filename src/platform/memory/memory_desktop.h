#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/desktop_services.h"

namespace coffrelune {

/// Writes down what it is asked for and does nothing else.
class MemoryShell final : public ShellService {
  public:
    struct Opened {
        std::string target;
        std::string parameters;

        bool operator==(const Opened&) const = default;
    };

    void open(const std::string& target, const std::string& parameters) override;
    void showProperties(const std::string& path) override { properties_.push_back(path); }
    bool hasTaskScheduler() override { return schedulerThere_; }
    void setTaskScheduler(bool there) { schedulerThere_ = there; }
    void openTaskScheduler() override { ++schedulerOpenings_; }
    void notify(const std::string& title, const std::string& text) override {
        notices_.push_back({title, text});
    }
    void playSystemSound(const std::string& name) override { systemSounds_.push_back(name); }

    const std::vector<Opened>& opened() const { return opened_; }
    const std::vector<std::string>& properties() const { return properties_; }
    /// Title and text of each.
    const std::vector<Opened>& notices() const { return notices_; }
    int schedulerOpenings() const { return schedulerOpenings_; }
    const std::vector<std::string>& systemSounds() const { return systemSounds_; }

  private:
    std::vector<Opened> opened_;
    std::vector<std::string> properties_;
    std::vector<std::string> systemSounds_;
    std::vector<Opened> notices_;
    int schedulerOpenings_ = 0;
    bool schedulerThere_ = true;
};

/// Knows the drives that a test describes; every other one has no medium (21).
class MemoryDriveInformation final : public DriveInformation {
  public:
    struct Drive {
        std::string label;
        DriveDescription description;
        std::uint64_t total = 0;
        std::uint64_t free = 0;
    };

    /// `root`: "D:\", in either case.
    void set(const std::string& root, Drive drive);
    /// The drive is still known by its description, and there is nothing in it.
    void takeMediumOut(const std::string& root);

    Status volumeLabel(const std::string& root, std::string& label) override;
    DriveDescription describe(const std::string& root) override;
    Status sizes(const std::string& root, std::uint64_t& total, std::uint64_t& free) override;

  private:
    const Drive* ready(const std::string& root) const;  // null without a medium

    std::map<std::string, Drive> drives_;  // by root in upper case
    std::set<std::string> empty_;
};

/// Holds values below the keys that a test adds; a value of any other key is refused with 2.
class MemoryRegistry final : public RegistryService {
  public:
    void addKey(Root root, const std::string& key) { values_[{root, key}]; }
    /// Empty when there is no such value.
    std::string value(Root root, const std::string& key, const std::string& name) const;

    /// Every call, refused ones included: "setText HKCU\Key name data", "deleteValue HKCU\Key
    /// name".
    const std::vector<std::string>& calls() const { return calls_; }

    Status setText(Root root, const std::string& key, const std::string& name,
                   const std::string& data) override;
    Status deleteValue(Root root, const std::string& key, const std::string& name) override;

  private:
    using Values = std::map<std::string, std::string>;

    void record(const std::string& call, Root root, const std::string& key,
                const std::string& rest);
    Status set(Root root, const std::string& key, const std::string& name, const std::string& data);

    std::map<std::pair<Root, std::string>, Values> values_;
    std::vector<std::string> calls_;
};

/// Plans nothing, and remembers what it was to plan. Fails while a test says so.
class MemoryTaskScheduler final : public TaskScheduler {
  public:
    Status write(const PlannedTask& task, std::string& advice) override;
    Status read(const std::string& name, PlannedEntry& entry) override;
    Status remove(const std::string& name) override;
    Status rename(const std::string& from, const std::string& to,
                  const std::vector<WordChange>& changes) override;

    const std::map<std::string, PlannedTask>& tasks() const { return tasks_; }
    /// What write(), remove() and rename() answer; 0 for success.
    void fail(std::uint32_t number) { failure_ = number; }
    /// What is planned under a name belongs to another copy of the program.
    void belongToAnother(const std::string& name) { foreign_.insert(name); }

  private:
    std::set<std::string> foreign_;
    std::map<std::string, PlannedTask> tasks_;
    std::uint32_t failure_ = 0;
};

/// The desktop's services in memory, beside a MemoryPlatform.
class MemoryDesktop {
  public:
    MemoryDesktop() = default;
    MemoryDesktop(const MemoryDesktop&) = delete;
    MemoryDesktop& operator=(const MemoryDesktop&) = delete;

    MemoryShell& shell() { return shell_; }
    MemoryDriveInformation& driveInformation() { return driveInformation_; }
    MemoryRegistry& registry() { return registry_; }

    /// References to the services of this object, which outlives them.
    Desktop desktop() { return {shell_, driveInformation_, registry_, &tasks_}; }
    MemoryTaskScheduler& tasks() { return tasks_; }

  private:
    MemoryShell shell_;
    MemoryDriveInformation driveInformation_;
    MemoryRegistry registry_;
    MemoryTaskScheduler tasks_;
};

}  // namespace coffrelune
