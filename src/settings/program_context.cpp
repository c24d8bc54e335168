#include "settings/program_context.h"

#include <vector>

#include "system/text.h"

namespace coffrelune {

CommandLine readCommandLine(const std::string& text) {
    CommandLine result;
    if (text.empty()) return result;
    const std::vector<std::string> elements = splitText(text, '/');
    // A blank before a bare name belongs to it: nothing but a name is expected there.
    if (elements.size() == 1) result.configurationName = ProperCase(text);
    // What stands before the first "/" is ignored. Any switch that is not "Auto" is a name, so a
    // mistyped one shows itself as an empty configuration.
    for (std::size_t i = 1; i < elements.size(); ++i) {
        const std::string element = ProperCase(trimBlanks(elements[i]));
        if (element == "Auto") {
            result.AutoMode = true;
        } else {
            result.configurationName = element;
        }
    }
    return result;
}

}  // namespace coffrelune
