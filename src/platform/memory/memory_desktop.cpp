#include "platform/memory/memory_desktop.h"

#include <algorithm>

namespace coffrelune {
namespace {

// Drive letters in either case are one drive.
std::string keyOf(std::string root) {
    if (!root.empty() && root[0] >= 'a' && root[0] <= 'z')
        root[0] = static_cast<char>(root[0] - 32);
    return root;
}

}  // namespace

void MemoryShell::open(const std::string& target, const std::string& parameters) {
    opened_.push_back({target, parameters});
}

void MemoryDriveInformation::set(const std::string& root, Drive drive) {
    drives_[keyOf(root)] = std::move(drive);
    empty_.erase(keyOf(root));
}

void MemoryDriveInformation::takeMediumOut(const std::string& root) {
    empty_.insert(keyOf(root));
}

const MemoryDriveInformation::Drive* MemoryDriveInformation::ready(const std::string& root) const {
    const auto found = drives_.find(keyOf(root));
    return found == drives_.end() || empty_.count(keyOf(root)) > 0 ? nullptr : &found->second;
}

Status MemoryDriveInformation::volumeLabel(const std::string& root, std::string& label) {
    const Drive* drive = ready(root);
    if (drive == nullptr) return Status::failure(error_number::notReady, root);
    label = drive->label;
    return {};
}

DriveDescription MemoryDriveInformation::describe(const std::string& root) {
    const auto found = drives_.find(keyOf(root));
    return found == drives_.end() ? DriveDescription() : found->second.description;
}

Status MemoryDriveInformation::sizes(const std::string& root, std::uint64_t& total,
                                     std::uint64_t& free) {
    const Drive* drive = ready(root);
    if (drive == nullptr) return Status::failure(error_number::notReady, root);
    total = drive->total;
    free = drive->free;
    return {};
}

std::string MemoryRegistry::value(Root root, const std::string& key,
                                  const std::string& name) const {
    const auto values = values_.find({root, key});
    if (values == values_.end()) return {};
    const auto found = values->second.find(name);
    return found == values->second.end() ? std::string() : found->second;
}

void MemoryRegistry::record(const std::string& call, Root root, const std::string& key,
                            const std::string& rest) {
    const char* rootName = root == Root::currentUser ? "HKCU" : "HKLM";
    calls_.push_back(call + ' ' + rootName + '\\' + key + ' ' + rest);
}

Status MemoryRegistry::set(Root root, const std::string& key, const std::string& name,
                           const std::string& data) {
    const auto values = values_.find({root, key});
    if (values == values_.end()) return Status::failure(error_number::fileNotFound, key);
    values->second[name] = data;
    return {};
}

Status MemoryRegistry::setText(Root root, const std::string& key, const std::string& name,
                               const std::string& data) {
    record("setText", root, key, name + ' ' + data);
    return set(root, key, name, data);
}

Status MemoryRegistry::deleteValue(Root root, const std::string& key, const std::string& name) {
    record("deleteValue", root, key, name);
    const auto values = values_.find({root, key});
    const bool deleted = values != values_.end() && values->second.erase(name) > 0;
    return deleted ? Status() : Status::failure(error_number::fileNotFound, key);
}

Status MemoryTaskScheduler::write(const PlannedTask& task, std::string&) {
    if (failure_ != 0) return Status::failure(failure_, task.name);
    tasks_[task.name] = task;
    return {};
}

Status MemoryTaskScheduler::read(const std::string& name, PlannedEntry& entry) {
    const auto found = tasks_.find(name);
    if (found == tasks_.end()) return Status::failure(error_number::fileNotFound, name);
    entry = {"mémoire", found->second.time, found->second.program, !foreign_.contains(name)};
    return {};
}

Status MemoryTaskScheduler::remove(const std::string& name) {
    if (failure_ != 0) return Status::failure(failure_, name);
    return tasks_.erase(name) > 0 ? Status() : Status::failure(error_number::fileNotFound, name);
}

Status MemoryTaskScheduler::rename(const std::string& from, const std::string& to,
                                   const std::vector<WordChange>& changes) {
    const auto found = tasks_.find(from);
    if (found == tasks_.end()) return Status::failure(error_number::fileNotFound, from);
    if (failure_ != 0) return Status::failure(failure_, from);
    PlannedTask task = found->second;
    for (const auto& [old, now] : changes) {
        const auto at =
            std::search(task.arguments.begin(), task.arguments.end(), old.begin(), old.end());
        if (at == task.arguments.end()) continue;
        std::copy(now.begin(), now.end(), at);
        task.name = to;
        tasks_.erase(found);
        tasks_[to] = task;
        return {};
    }
    return Status::failure(error_number::invalidData, from);
}

}  // namespace coffrelune
