#pragma once

#include <cstdint>
#include <string>

// Calls of this program to the system, met at its own table of imports. On one thread, and one of
// these objects at a time.
namespace coffrelune {

/// How often something was looked at by its name since this was made: CreateFileW,
/// FindFirstFileExW, GetFileAttributesW and GetFileAttributesExW. Each opens what bears the name,
/// over a net with a way there and back of its own. What is asked of an open file or listing does
/// not count.
class CallCount {
  public:
    CallCount();
    CallCount(const CallCount&) = delete;
    CallCount& operator=(const CallCount&) = delete;
    ~CallCount();

    int calls() const;
};

/// No listing whose path has `part` in it can be begun, as long as this lives.
class RefusedListings {
  public:
    RefusedListings(const std::wstring& part, std::uint32_t error);
    RefusedListings(const RefusedListings&) = delete;
    RefusedListings& operator=(const RefusedListings&) = delete;
    ~RefusedListings();
};

/// Every listing breaks off after its first entry, as long as this lives.
class BrokenListings {
  public:
    explicit BrokenListings(std::uint32_t error);
    BrokenListings(const BrokenListings&) = delete;
    BrokenListings& operator=(const BrokenListings&) = delete;
    ~BrokenListings();
};

}  // namespace coffrelune
