#include "settings/error_list_name.h"

#include "system/paths.h"

namespace coffrelune {
namespace {

constexpr const char* letters = "SRC";  // by operation kind

}  // namespace

std::string errorListPath(const SystemMod& system, const std::string& configuration,
                          OperationKind kind) {
    const std::string name = std::string(1, letters[static_cast<int>(kind)]) + "_" +
                             cleanFileName(configuration, "_") + ".err";
    return joinPath(system.homeDirectory, name);
}

}  // namespace coffrelune
