#pragma once

#include <string>

namespace coffrelune {

/// What the engine asks of the window that shows the operation. The engine knows no other window.
class OperationWindow {
  public:
    virtual ~OperationWindow() = default;

    /// The directories being worked on, shown as "De: ..." and "Vers: ...".
    virtual void showSource(const std::string& path) = 0;
    virtual void showDestination(const std::string& path) = 0;
    /// The file being looked at, in full, while the user follows the analysis.
    virtual void showFile(const std::string& path) = 0;
    virtual void showPercentage(int percent, const std::string& caption) = 0;
    virtual void showRemainingTime(const std::string& caption) = 0;
    virtual void showRate(const std::string& caption) = 0;
    virtual void showCount(const std::string& caption) = 0;

    /// One line of a comparison's result.
    virtual void addToComparison(const std::string& line) = 0;
    /// One line of the journal; error lines come this way too.
    virtual void AjouteECTxt(const std::string& text) = 0;
    /// Called when the first error of the operation has been counted.
    virtual void MajErreurImg() = 0;
    /// A text that the user must see before the run goes on to its end.
    virtual void showCritical(const std::string& text) = 0;

    /// Asks whether an existing file may be replaced: 0 yes, 1 yes to all, 2 no, 3 cancel.
    virtual int DemandeRemplacement(const std::string& fileName) = 0;

    virtual void runPendingEvents() = 0;
};

}  // namespace coffrelune
