#pragma once

#include <wx/bmpbndl.h>

#include <map>
#include <string>
#include <utility>

namespace coffrelune {

/// The program's drawings by name, rendered at whatever density they are shown.
class Pictures {
  public:
    /// `size`: edge in density-independent pixels. Empty when there is no such drawing.
    const wxBitmapBundle& find(const std::string& name, int size);

  private:
    std::map<std::pair<std::string, int>, wxBitmapBundle> known_;
};

}  // namespace coffrelune
