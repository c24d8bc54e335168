#include "settings/registres.h"

#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// What is started at logon: the file as it is called now, with no quotes and no switch, because a
// start at logon is an ordinary one. A name without ".exe" is that of a system that needs none.
std::string startCommand(const std::string& executablePath) {
    const SplitPath path = splitPath(executablePath);
    const std::string name = withoutExtension(path.last);
    const bool hasExe = equalIgnoringCase(path.last, name + ".exe");
    return withTrailingBackslash(path.parent) + (hasExe ? name + ".exe" : path.last);
}

}  // namespace

void Registres::setValue(RegistryService::Root root, const std::string& key,
                         const std::string& name, std::uint32_t type, const std::string& data) {
    if (type == RegistryService::textType) {
        (void)registry_.setText(root, key, name, data);
    } else if (type == RegistryService::numberType) {
        (void)registry_.setNumber(root, key, name, static_cast<std::uint32_t>(leadingNumber(data)));
    }
}

void Registres::deleteValue(RegistryService::Root root, const std::string& key,
                            const std::string& name) {
    (void)registry_.deleteValue(root, key, name);
}

void Registres::setAutoStart(bool on, const std::string& executablePath) {
    using Root = RegistryService::Root;
    if (on) {
        if (executablePath.empty()) return;
        setValue(Root::currentUser, runKey, runValue, RegistryService::textType,
                 startCommand(executablePath));
        return;
    }
    deleteValue(Root::currentUser, runKey, runValue);
    // Never written here, but an administrator may have put it there for everyone; only one who may
    // takes it away again.
    deleteValue(Root::localMachine, runKey, runValue);
}

}  // namespace coffrelune
