#pragma once

#include "engine/run_state.h"
#include "platform/content_reader.h"

namespace coffrelune {

/// Compares what two files hold, whatever their dates and sizes say.
class ContentCheck {
  public:
    explicit ContentCheck(RunState& run) : run_(run) {}

    /// Reads both as far as they are equal. A link that is not followed holds where it leads. Not
    /// to be trusted once the run has been stopped. Fails with what could not be read.
    Status compare(const std::string& source, const std::string& target, LinkRule links,
                   bool& same);

  private:
    RunState& run_;
};

}  // namespace coffrelune
