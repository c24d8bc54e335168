#pragma once

#include <array>
#include <functional>

#include "mainwindow/main_dialogs.h"
#include "operation/log_search.h"
#include "platform/commands.h"
#include "platform/desktop_services.h"
#include "platform/long_lists.h"

namespace coffrelune {

/// How the last runs of the current kind ended and, for comparisons, what the last one found.
class ResultsArea {
  public:
    /// `direction` is the button that turns the comparison round.
    ResultsArea(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, Button& direction);

    std::array<Label, 3> LastSaveLbl;  // 0 clean run, 1 run with problems, 2 their number
    Picture OkImg;
    Picture ErrImg;
    Picture NbErrImg;
    LinkLabel VoirErrLbl;  // opens the error list
    TextLog TxtCp;         // the list of the last comparison
    Label LblComp;         // and its summary
    LogSearch search;      // in that list

    /// The direction of comparisons has changed: the lines are to be shown again.
    std::function<void()> onDirectionChanged;

    /// The results of the current kind; the comparison's controls are visible on its tab only.
    void ShowSummary();
    /// A run of the current kind has been recorded.
    void resultStored();
    void ClearComparison();
    void showDirection();

  private:
    void changeDirection();
    void showErrors();

    SystemMod& system_;
    Desktop& desktop_;
    MainDialogs& dialogs_;
    Button& direction_;
};

}  // namespace coffrelune
