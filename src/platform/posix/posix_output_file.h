#pragma once

#include <memory>
#include <string>

#include "platform/output_file.h"
#include "platform/posix/drive_table.h"

namespace coffrelune {

/// Empties the file, or creates it.
Status createOutputFile(const DriveTable& table, const std::string& path,
                        std::unique_ptr<OutputFile>& file);

}  // namespace coffrelune
