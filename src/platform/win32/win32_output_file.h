#pragma once

#include <memory>
#include <string>

#include "platform/output_file.h"

namespace coffrelune {

/// Empties the file, or creates it.
Status createOutputFile(const std::string& path, std::unique_ptr<OutputFile>& file);

}  // namespace coffrelune
