#include "platform/wx/pictures.h"

#include "platform/wx/icons.h"
#include "platform/wx/system_picture.h"

namespace coffrelune {

const wxBitmapBundle& Pictures::find(const std::string& name, int size) {
    const auto key = std::make_pair(name, size);
    const auto found = known_.find(key);
    if (found != known_.end()) return found->second;
    const std::string svg(iconSvg(name));
    wxBitmapBundle drawn = svg.empty() ? systemPicture(name)
                                       : wxBitmapBundle::FromSVG(svg.c_str(), wxSize(size, size));
    return known_.emplace(key, std::move(drawn)).first->second;
}

}  // namespace coffrelune
