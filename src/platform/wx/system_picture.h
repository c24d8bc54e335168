#pragma once

#include <wx/bmpbndl.h>

#include <string>

namespace coffrelune {

/// A picture that the desktop has for one of its own things; empty when it knows none of the name.
wxBitmapBundle systemPicture(const std::string& name);

}  // namespace coffrelune
