#include "engine/size_text.h"

#include "system/numbers.h"

namespace coffrelune {
namespace {

constexpr double kilo = 1024.0;
constexpr double mega = 1024.0 * kilo;
constexpr double giga = 1024.0 * mega;

std::string scaled(double value, const char* unit, const Locale& locale) {
    const std::string number = value < 10    ? formatFixed(value, 2, locale)
                               : value < 100 ? formatFixed(value, 1, locale)
                                             : formatGrouped(value, locale);
    return number + " " + unit;
}

}  // namespace

std::string sizeText(float bytes, const Locale& locale) {
    const double n = bytes;
    if (n < 1000) return formatFixed(n, 0, locale) + (n <= 1 ? " octet" : " octets");
    if (n < 1000 * kilo) return scaled(n / kilo, "Ko", locale);
    if (n < 1000 * mega) return scaled(n / mega, "Mo", locale);
    return scaled(n / giga, "Go", locale);
}

}  // namespace coffrelune
