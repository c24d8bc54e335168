#include "platform/win32/win32_places.h"

#include "platform/win32/entry_query.h"

namespace coffrelune {

Status Win32Places::reach(const std::string& path, Win32Place& place) const {
    Status status = holds_.locate(path, place);
    if (!status.ok()) return status;
    const std::uint32_t error = place.checkWay();
    return error == 0 ? status : failureAt(error, place.path, path);
}

Status Win32Places::reachToWrite(const std::string& path, Win32Place& place) {
    Status status = reach(path, place);
    if (!status.ok()) return status;
    forget(place.path.name());
    place.expectWrite();
    return status;
}

void Win32Places::forget(std::wstring_view name) {
    for (const std::weak_ptr<KnownEntries>& one : watched_) {
        if (const auto known = one.lock()) known->forget(name);
    }
}

std::shared_ptr<KnownEntries> Win32Places::watch() {
    std::erase_if(watched_, [](const auto& known) { return known.expired(); });
    auto known = std::make_shared<KnownEntries>();
    watched_.push_back(known);
    return known;
}

}  // namespace coffrelune
