#pragma once

namespace coffrelune {

/// How often this program has asked the system for something by its name since it was made: each
/// such call opens what bears the name, over a net with a way there and back of its own. What is
/// asked of an open file or listing does not count. One at a time.
class CallCount {
  public:
    CallCount();
    CallCount(const CallCount&) = delete;
    CallCount& operator=(const CallCount&) = delete;
    ~CallCount();

    int calls() const;
};

}  // namespace coffrelune
