#pragma once

#include <string>

#include "platform/controls.h"
#include "platform/long_lists.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What changes in the window that launched an operation while it runs, and after it.
class OperationHost {
  public:
    virtual ~OperationHost() = default;

    /// The done mark `ImgOk` of a line.
    virtual void showLineDone(int line, bool done) = 0;
    virtual void setLaunchEnabled(bool enabled) = 0;
    virtual void setTimerEnabled(bool enabled) = 0;
    /// The results of a kind have been recorded: show them.
    virtual void resultStored(OperationKind kind) = 0;

    /// The list of a comparison and the label below it.
    virtual TextLog& comparisonList() = 0;
    virtual Label& comparisonSummary() = 0;
};

/// A host with no window: for the terminal, and for a start with "/Auto" where there is no display.
class SharedHost final : public OperationHost {
  public:
    void showLineDone(int, bool) override {}
    void setLaunchEnabled(bool) override {}
    void setTimerEnabled(bool) override {}
    void resultStored(OperationKind) override {}
    TextLog& comparisonList() override { return comparisonList_; }
    Label& comparisonSummary() override { return comparisonSummary_; }

  private:
    TextLog comparisonList_;
    Label comparisonSummary_;
};

}  // namespace coffrelune
