#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/copie_mod.h"
#include "engine/operation_window.h"
#include "operation/operation_host.h"
#include "platform/controls.h"
#include "platform/text_log.h"
#include "settings/unfinished_copies.h"

namespace coffrelune {

/// The operation window: runs one operation over the selected lines as soon as it is activated,
/// shows how far it has come, and closes by itself, or waits at "Fermer" when there were errors.
class Copie final : public Window, public OperationWindow {
  public:
    /// `statistics` is read by the launcher after the window has closed.
    Copie(SystemMod& system, RunStatistics& statistics, OperationHost& host);

    // Lbl: 0 percentage, 1 phase then "De: ...", 2 remaining time, 3 detail, count, then
    // "Vers: ...", 4 file being analysed, 5 transfer rate.
    std::array<Label, 6> Lbl;
    ProgressBar ProgBar;
    TextLog ECTxt;
    CheckBox AnalyseChk{"Suivi de l'analyse"};
    Button Cmd{"Annuler"};
    Picture ImgSrc;
    Picture ImgDest;
    std::array<Picture, 6> ImgSens;  // 0 the one shown; 1 to 3 by kind; 4, 5 with an error mark
    std::array<Picture, 2> ImgAtt;   // warning marks by kind

    /// The first call starts the run. The view also calls it once when it has shown the window
    /// without it coming to the front (minimised, or behind another program): else nothing runs.
    void activated() override;
    /// The close box acts as the button.
    void closeBox() override { Cmd.click(); }
    std::vector<Button*> buttons() override { return {&Cmd}; }

    /// The run stops after the file in progress, without a question. Nothing once it is over.
    void requestInterruption();
    /// The run is over and the window waits for "Fermer".
    bool finished() const { return finished_; }

    // What the engine asks for.
    void showSource(const std::string& path) override;
    void showDestination(const std::string& path) override;
    void showFile(const std::string& path) override;
    void showPercentage(int percent, const std::string& caption) override;
    void showRemainingTime(const std::string& caption) override;
    void showRate(const std::string& caption) override;
    void showCount(const std::string& caption) override;
    void addToComparison(const std::string& line) override;
    void AjouteECTxt(const std::string& text) override;
    void MajErreurImg() override;
    void showCritical(const std::string& text) override;
    int DemandeRemplacement(const std::string& fileName) override;
    void runPendingEvents() override;

  private:
    void LanceCopie();
    void CopieArborescence();
    void EffaceExcedents();
    bool mayDeleteExcess();
    void readExclusions();
    void LanceComparaison();
    void compareLines();
    void endComparison();
    void summarizeComparison();
    void addToBoth(const std::string& line);
    void showTreePhase();
    void startAnalysis();
    void analyseLines();
    void markAnalysed(int line);
    void markRestored();
    void mark(int line);
    void unmark(int line);
    UnfinishedCopies::Kind writtenKind() const;
    bool backsUp() const;
    bool nothingToCopy(int line) const;
    bool hasErrors(int line) const;
    bool prepareCopy();
    void copyLines();
    void endRun();

    bool takesPart(int line) const;
    std::vector<LineRoots> rootsOfOthers(int line) const;
    void walkLine(int line, bool analysisPass);
    void load();
    void press();
    void unload();

    SystemMod& system_;
    RunStatistics& statistics_;
    OperationHost& host_;
    CopieMod engine_;
    bool activated_ = false;
    bool finished_ = false;
    LocalTime startTime_;
    std::vector<ExclusionList> ownExclusions_;  // of every line, as they were when the run began
};

}  // namespace coffrelune
