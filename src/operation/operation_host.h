#pragma once

#include <string>

#include "platform/controls.h"
#include "platform/text_log.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What an operation needs of the window that launched it: the lines as it shows them, and what
/// changes there while the operation runs.
class OperationHost {
  public:
    virtual ~OperationHost() = default;

    virtual int lineCount() const = 0;
    virtual bool lineSelected(int line) const = 0;
    /// Full texts of the labels `LblS` and `LblD`, whatever they have room to display.
    virtual std::string lineSource(int line) const = 0;
    virtual std::string lineDestination(int line) const = 0;

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

}  // namespace coffrelune
