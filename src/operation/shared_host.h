#pragma once

#include <memory>
#include <vector>

#include "operation/operation_host.h"

namespace coffrelune {

/// An operation's host with no window: the lines as the shared state holds them, in the layout of
/// the operation kind. For the terminal, and for a start with "/Auto" where there is no display.
class SharedHost final : public OperationHost {
  public:
    explicit SharedHost(SystemMod& system) : system_(system) {}

    int lineCount() const override;
    bool lineSelected(int line) const override;
    std::string lineSource(int line) const override;
    std::string lineDestination(int line) const override;
    void showLineDone(int, bool) override {}
    void setLaunchEnabled(bool) override {}
    void setTimerEnabled(bool) override {}
    void resultStored(OperationKind) override {}
    TextLog& comparisonList() override { return comparisonList_; }
    Label& comparisonSummary() override { return comparisonSummary_; }

  private:
    SystemMod& system_;
    TextLog comparisonList_;
    Label comparisonSummary_;
};

}  // namespace coffrelune
