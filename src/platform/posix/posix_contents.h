#pragma once

#include "platform/content_reader.h"
#include "platform/posix/drive_table.h"

namespace coffrelune {

class PosixContents final : public ContentReader {
  public:
    /// `table` is not owned and must outlive this object.
    explicit PosixContents(const DriveTable& table) : table_(table) {}

    Status open(const std::string& path, LinkRule links,
                std::unique_ptr<Content>& content) override;

  private:
    const DriveTable& table_;
};

}  // namespace coffrelune
