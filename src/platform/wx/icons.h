#pragma once

#include <string_view>

namespace coffrelune {

/// The drawing of a picture, as the text of an SVG image; empty when there is none of that name.
/// The drawings are those of assets/icons, compiled into the program; the view lives as long as it.
std::string_view iconSvg(std::string_view name);

}  // namespace coffrelune
