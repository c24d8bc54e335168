#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32/known_entries.h"
#include "platform/win32/win32_holds.h"

namespace coffrelune {

/// Where the paths of one file service lead, and the open directories that must hear of what it
/// writes.
class Win32Places {
  public:
    Win32Holds& holds() { return holds_; }
    const Win32Holds& holds() const { return holds_; }

    /// Success when the way to the place is what it should be.
    Status reach(const std::string& path, Win32Place& place) const;
    /// The same for a place that is about to be written to.
    Status reachToWrite(const std::string& path, Win32Place& place);

    /// What bears the name, somewhere, is another file from now on.
    void forget(std::wstring_view name);
    /// The entries of a directory that is opened.
    std::shared_ptr<KnownEntries> watch();

  private:
    Win32Holds holds_;
    std::vector<std::weak_ptr<KnownEntries>> watched_;
};

}  // namespace coffrelune
