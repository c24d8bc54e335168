#pragma once

#include <array>
#include <string>

namespace coffrelune {

/// Which of input, output and errors are a terminal (all three one and the same); the others are an
/// empty input and files. `columns`: its width, 0 when it does not tell.
struct StreamLayout {
    bool input;
    bool output;
    bool errors;
    unsigned short columns = 80;
};
inline constexpr StreamLayout interactive{true, true, true};
inline constexpr StreamLayout noTerminal{false, false, false};

/// The three streams of the process on a terminal of the test's own, or on plain files, from the
/// construction to finish(). Google Test prints on the same streams: assert after finish().
class RedirectedStreams {
  public:
    explicit RedirectedStreams(const StreamLayout& layout);
    ~RedirectedStreams() { finish(); }
    RedirectedStreams(const RedirectedStreams&) = delete;
    RedirectedStreams& operator=(const RedirectedStreams&) = delete;

    /// What the user types; must be shorter than a terminal's buffer. "\x04" ends the input.
    void type(const std::string& text);

    /// Returns when the terminal shows `text`, from another thread than the program's; false when
    /// it did not come for ten seconds.
    bool waitFor(const std::string& text);

    /// Gives the process its own streams back; what was written can be read then.
    void finish();

    const std::string& onTerminal() const { return terminalText_; }
    const std::string& onOutput() const { return outputText_; }
    const std::string& onErrors() const { return errorsText_; }

  private:
    std::array<int, 3> saved_{-1, -1, -1};
    int master_ = -1;
    int slave_ = -1;
    int outputFile_ = -1;
    int errorsFile_ = -1;
    std::string terminalText_;
    std::string outputText_;
    std::string errorsText_;
};

}  // namespace coffrelune
