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

// Every outcome is left alone: see the class.
void Registres::setAutoStart(bool on, const std::string& executablePath) {
    using Root = RegistryService::Root;
    if (on) {
        if (executablePath.empty()) return;
        (void)registry_.setText(Root::currentUser, runKey, runValue, startCommand(executablePath));
        return;
    }
    (void)registry_.deleteValue(Root::currentUser, runKey, runValue);
    // Never written here, but an administrator may have put it there for everyone; only one who may
    // takes it away again.
    (void)registry_.deleteValue(Root::localMachine, runKey, runValue);
}

}  // namespace coffrelune
