#pragma once

#include <wx/window.h>

#include "system/path_caption.h"
#include "views/wx/text.h"

namespace coffrelune {

/// Measures in the font of a widget, which outlives this.
class TextWidth final : public TextMeasure {
  public:
    explicit TextWidth(const wxWindow& widget) : widget_(widget) {}
    int width(const std::string& text) override { return widget_.GetTextExtent(toWx(text)).x; }

  private:
    const wxWindow& widget_;
};

}  // namespace coffrelune
