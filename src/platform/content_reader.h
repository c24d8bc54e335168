#pragma once

#include <memory>
#include <span>
#include <string>

#include "platform/directory.h"
#include "platform/status.h"

namespace coffrelune {

/// What one file holds, read from its beginning.
class Content {
  public:
    virtual ~Content() = default;

    /// Fills `buffer` as far as the content reaches; `length` is less than its size only at the
    /// end.
    virtual Status read(std::span<char> buffer, std::size_t& length) = 0;
};

/// Opens files for reading, and never for anything else.
class ContentReader {
  public:
    virtual ~ContentReader() = default;

    /// The content of a link that is not followed is where it leads. What the system remembers of
    /// the file is given up first where it allows it: what counts is what the disk holds.
    virtual Status open(const std::string& path, LinkRule links,
                        std::unique_ptr<Content>& content) = 0;
};

}  // namespace coffrelune
