#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/run_display.h"
#include "operation/operation.h"
#include "platform/controls.h"
#include "platform/long_lists.h"

namespace coffrelune {

/// Asks whether an existing file may be replaced. A fresh one is made for each question.
class frmConfirm final : public Window {
  public:
    explicit frmConfirm(const Replacement& replacement);

    std::array<Button, 4> Cmd;   // by answer: "&Oui", "&Tous", "&Non", "Annuler"
    std::array<Label, 2> Lbl;    // upper, lower
    std::array<Label, 3> Facts;  // see Replacement
    Picture Image1;

    /// That of the pressed button; `cancel` when the window was closed without one, since a
    /// question that nobody answered grants nothing.
    ReplacementAnswer answer() const { return answer_; }

    std::vector<Button*> buttons() override;
    std::vector<Label*> labels() override;
    /// Nothing is replaced by a key that was meant for another window.
    Button* defaultButton() override { return &Cmd[noCmd]; }
    Button* cancelButton() override { return &Cmd[cancelCmd]; }

  private:
    static constexpr std::size_t noCmd = 2;
    static constexpr std::size_t cancelCmd = 3;

    ReplacementAnswer answer_ = ReplacementAnswer::cancel;
};

/// The operation window: runs an operation as soon as it is activated, shows how far it has come,
/// and closes by itself, or waits at "Fermer" when there were errors.
class Copie final : public Window, public RunDisplay {
  public:
    Copie(SystemMod& system, Operation& operation, OperationHost& host);

    /// What each of the labels shows.
    enum LabelOf : std::size_t {
        percentageLabel,
        phaseLabel,  // then "De: ..."
        remainingTimeLabel,
        detailLabel,  // a count, then "Vers: ..."
        fileLabel,    // that is analysed or copied
        rateLabel,
    };
    std::array<Label, 6> Lbl;
    ProgressBar ProgBar;
    TextLog ECTxt;
    CheckBox AnalyseChk{"Suivi de l'analyse"};
    Button Cmd{"Annuler"};
    Picture ImgSrc;
    Picture ImgDest;
    Picture ImgSens;                // between them, by kind and whether there were errors
    std::array<Picture, 2> ImgAtt;  // warning marks by kind

    /// The first call starts the run. The view also calls it once when it has shown the window
    /// without it coming to the front (minimised, or behind another program): else nothing runs.
    void activated() override;
    /// The close box acts as the button.
    void closeBox() override { Cmd.click(); }
    std::vector<Button*> buttons() override { return {&Cmd}; }

    /// The run stops after the file in progress, without a question. Nothing once it is over.
    void requestInterruption();
    /// The run is over and the window waits for "Fermer".
    bool finished() const { return operation_.waitsForUser(); }

    // ---- RunDisplay --------------------------------------------------------------------------
    void showPhase(const std::string& phase, const std::string& detail) override;
    void offerAnalysisDetail() override { AnalyseChk.setVisible(true); }
    void showCopyPhase(const std::string& remainingTime) override;
    void showComparisonPhase(const std::string& phase) override;
    void showSource(const std::string& path) override;
    void showDestination(const std::string& path) override;
    void showFile(const std::string& path) override;
    void showPercentage(int percent, const std::string& caption) override;
    void showRemainingTime(const std::string& caption) override;
    void showRate(const std::string& caption) override;
    void showCount(const std::string& caption) override;
    void showLineDone(int line) override { host_.showLineDone(line, true); }
    void addToComparison(const std::string& line) override;
    void showComparisonSummary(const std::string& summary) override;
    void AjouteECTxt(const std::string& text) override;
    void MajErreurImg() override;
    void showCritical(const std::string& text) override;
    ReplacementAnswer DemandeRemplacement(const Replacement& replacement) override;
    void runPendingEvents() override;

  private:
    void showDirection(bool withErrors);
    void press();
    void unload();

    SystemMod& system_;
    Operation& operation_;
    OperationHost& host_;
    bool activated_ = false;
    bool stopping_ = false;  // the user has asked for it
};

/// Shows operations in a `Copie` of their own.
class WindowStage final : public OperationStage {
  public:
    explicit WindowStage(SystemMod& system) : system_(system) {}
    void show(Operation& operation, OperationHost& host) override;

  private:
    SystemMod& system_;
};

}  // namespace coffrelune
