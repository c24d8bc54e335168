#pragma once

#include <wx/bmpbndl.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace coffrelune {

/// The program's drawings by name, rendered at whatever density they are shown.
class Pictures {
  public:
    /// `size`: edge in density-independent pixels. Empty when there is no such drawing.
    const wxBitmapBundle& find(const std::string& name, int size);
    /// The same for a control that is disabled: fainter on light and on dark ground.
    const wxBitmapBundle& findFaint(const std::string& name, int size);

  private:
    std::map<std::pair<std::string, int>, wxBitmapBundle> faint_;
    std::map<std::pair<std::string, int>, wxBitmapBundle> known_;
};

/// What a reader says for a picture; empty for one that only decorates.
std::string spokenPicture(const std::string& image);

/// The drawing of a picture, as the text of an SVG image; empty when there is none of that name.
/// The drawings are those of assets/icons, compiled into the program; the view lives as long as it.
std::string_view iconSvg(std::string_view name);

}  // namespace coffrelune
