#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "operation/log_search.h"
#include "platform/controls.h"
#include "platform/long_lists.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Path of the error list of one kind for the current configuration.
std::string errorListPath(const SystemMod& system, OperationKind kind);

/// Writes the journal of the operation in progress as its error list, in the ANSI code page. The
/// list of an earlier run is replaced as a whole; it stays if the new one cannot be written. Does
/// nothing for a run without a settings directory.
Status EcritErreurs(SystemMod& system, const std::string& journal);

/// Reads the error list of a kind for the current configuration, as UTF-8; empty when there is none
/// or it cannot be read.
std::string readErrorList(SystemMod& system, OperationKind kind);

/// Why a run was stopped, for the final message. Empty for 0: the user stopped it. `sharingPath` is
/// what a sharing or lock violation concerned.
std::string errorCause(std::uint32_t number, const std::string& sharingPath);

/// The number in a few words, for a list of errors; empty for one that the program does not name.
std::string errorMeaning(std::uint32_t number);

/// The words for the number of an error line; empty for any other line.
std::string meaningOfErrorLine(std::string_view line);

/// Shows the error list of the current configuration for the current operation kind.
class VisuErrFrm final : public Window {
  public:
    explicit VisuErrFrm(SystemMod& system);

    std::array<Label, 2> Lbl;  // 0 configuration and kind, 1 count
    TextLog ListeTxt;
    LogSearch search;
    Button Cmd{"&Fermer"};

    std::vector<Button*> buttons() override { return {&Cmd}; }
    std::vector<Label*> labels() override { return {&Lbl[0], &Lbl[1]}; }

  private:
    void LitErreurs();

    SystemMod& system_;
};

}  // namespace coffrelune
