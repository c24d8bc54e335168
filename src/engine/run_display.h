#pragma once

#include <array>
#include <string>

namespace coffrelune {

/// Answers to the question before a file is replaced, in the order of its buttons.
enum class ReplacementAnswer { yes, yesToAll, no, cancel };

/// What the user is told of a file before it is replaced.
struct Replacement {
    std::string fileName;
    /// The folder, the file that is there, the one that would take its place: a line each.
    std::array<std::string, 3> facts;
};

/// What a run shows and asks. A window does it with its controls, a terminal with a line; the run
/// knows neither.
class RunDisplay {
  public:
    virtual ~RunDisplay() = default;

    /// A pass begins of which nobody knows how long it will take.
    virtual void showPhase(const std::string& phase, const std::string& detail) = 0;
    /// The user may choose to see each file that is analysed, until showCopyPhase().
    virtual void offerAnalysisDetail() = 0;
    /// The copy begins: progress is known from here on.
    virtual void showCopyPhase(const std::string& remainingTime) = 0;
    /// A comparison begins; the result of the one before goes.
    virtual void showComparisonPhase(const std::string& phase) = 0;

    /// The directories being worked on, shown as "De: ..." and "Vers: ...".
    virtual void showSource(const std::string& path) = 0;
    virtual void showDestination(const std::string& path) = 0;
    /// The file being looked at, in full, while the user follows the analysis; "Fichier: " and the
    /// name of the one that is being copied.
    virtual void showFile(const std::string& path) = 0;
    virtual void showPercentage(int percent, const std::string& caption) = 0;
    virtual void showRemainingTime(const std::string& caption) = 0;
    virtual void showRate(const std::string& caption) = 0;
    virtual void showCount(const std::string& caption) = 0;
    /// A line, by its index, has been copied to its end.
    virtual void showLineDone(int line) = 0;

    /// One line of a comparison's result, and what it comes to.
    virtual void addToComparison(const std::string& line) = 0;
    virtual void showComparisonSummary(const std::string& summary) = 0;
    /// One line of the journal; error lines come this way too.
    virtual void AjouteECTxt(const std::string& text) = 0;
    /// Called when the first error of the operation has been counted.
    virtual void MajErreurImg() = 0;
    /// A text that the user must see before the run goes on to its end.
    virtual void showCritical(const std::string& text) = 0;

    virtual ReplacementAnswer DemandeRemplacement(const Replacement& replacement) = 0;

    virtual void runPendingEvents() = 0;
};

}  // namespace coffrelune
