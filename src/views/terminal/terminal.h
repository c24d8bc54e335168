#pragma once

#include <functional>
#include <string>

#include "views/terminal/streams.h"

namespace coffrelune {

/// The streams of the process. Text is UTF-8, lines end with LF. Output that cannot be written is
/// given up: the run is worth more than its commentary.
class Terminal {
  public:
    /// `resultsOnly`: standard output is kept for a result that a program reads; everything said to
    /// the user goes to standard error.
    explicit Terminal(bool resultsOnly);

    /// A line of the program's result.
    void result(const std::string& line);
    /// Something of the standard output could not be written, for another reason than a reader that
    /// went away: whoever reads it has not got the result.
    bool outputLost() const { return outputLost_; }
    /// A line for the user; CR LF and LF end a line of it.
    void say(const std::string& text);
    /// A line that belongs to no result: a warning, a refusal.
    void warn(const std::string& text);

    /// Somebody can be asked: the input and an output are a terminal.
    bool canAsk() const { return canAsk_; }
    /// What a question is about, shown where the answer will be typed; said when nobody can be
    /// asked.
    void question(const std::string& text);
    /// Shows a prompt and reads one line; false at the end of the input, or as soon as `givenUp`,
    /// asked several times a second, says so.
    bool ask(const std::string& prompt, std::string& line,
             const std::function<bool()>& givenUp = {});

    /// A line that is written over by the next one; nothing unless standard error is a terminal.
    void showProgress(const std::string& line);
    void clearProgress();
    bool showsProgress() const { return showsProgress_; }

  private:
    void write(streams::Stream stream, const std::string& text);

    streams::Stream sayStream_;
    streams::Stream askStream_;
    bool canAsk_;
    bool showsProgress_;
    bool progressShown_ = false;
    bool outputLost_ = false;
};

}  // namespace coffrelune
