#pragma once

#include "platform/content_reader.h"

namespace coffrelune {

/// Links are always followed: what the copy holds of one is a link to the same text.
class Win32Contents final : public ContentReader {
  public:
    Status open(const std::string& path, LinkRule links,
                std::unique_ptr<Content>& content) override;
};

}  // namespace coffrelune
