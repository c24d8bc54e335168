#include "mainwindow/window_place.h"

#include <algorithm>

#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// Window systems know no place farther away than 32767 pixels.
int edgeFrom(const std::string& text) {
    constexpr int farthest = 32'767 * 15;
    const int twips = leadingNumber(text);
    return twips < -farthest || twips > farthest ? 0 : twips;
}

// A size that is none, or that one edge alone has, is none that the user has chosen.
int extentFrom(const std::string& text) {
    return std::max(edgeFrom(text), 0);
}

int stateFrom(const std::string& text) {
    const int state = leadingNumber(text);
    return state < WindowPlace::normal || state > WindowPlace::maximised ? WindowPlace::normal
                                                                         : state;
}

}  // namespace

void WindowPlace::load() {
    left = edgeFrom(system_.ReadSetting(globalSection, "Left"));
    top = edgeFrom(system_.ReadSetting(globalSection, "Top"));
    width = extentFrom(system_.ReadSetting(globalSection, "Width"));
    height = extentFrom(system_.ReadSetting(globalSection, "Height"));
    if (width == 0 || height == 0) width = height = 0;
    state = static_cast<State>(stateFrom(system_.ReadSetting(globalSection, "WindowState")));
}

// What already means this value stays as it is written, even if it is nothing that we would write.
void WindowPlace::saveNumber(const std::string& key, int value,
                             int (*understood)(const std::string&)) {
    const std::string stored = system_.ReadSetting(globalSection, key);
    if (!stored.empty() && understood(stored) == value) return;
    system_.keep(globalSection, key, std::to_string(value));
}

void WindowPlace::save() {
    saveNumber("WindowState", state, stateFrom);
    if (state == minimised) return;
    saveNumber("Left", left, edgeFrom);
    saveNumber("Top", top, edgeFrom);
    if (width == 0 || height == 0) return;
    saveNumber("Width", width, extentFrom);
    saveNumber("Height", height, extentFrom);
}

}  // namespace coffrelune
