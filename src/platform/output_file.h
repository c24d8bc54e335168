#pragma once

#include <string_view>

#include "platform/status.h"

namespace coffrelune {

/// A file that is written from its beginning while a run goes on: what has been written is there
/// even when the process is killed.
class OutputFile {
  public:
    virtual ~OutputFile() = default;

    virtual Status write(std::string_view text) = 0;
};

}  // namespace coffrelune
