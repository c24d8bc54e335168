#pragma once

#include <span>
#include <string>

namespace coffrelune {

/// Makes a short text of what a file holds: another one as soon as a single bit differs.
class ContentHash {
  public:
    virtual ~ContentHash() = default;

    virtual void start() = 0;
    virtual void add(std::span<const char> bytes) = 0;
    /// Of all that was added since start(): 16 hexadecimal digits.
    virtual std::string text() = 0;
};

}  // namespace coffrelune
