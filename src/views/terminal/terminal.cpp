#include "views/terminal/terminal.h"

#include "platform/characters.h"

namespace coffrelune {
namespace {

using streams::Stream;

// As many characters as fit on one line, so that the next text can be written over it.
std::string cutToWidth(const std::string& text, std::size_t width) {
    std::size_t position = 0;
    for (std::size_t shown = 0; position < text.size() && shown < width; ++shown) {
        (void)utf8::next(text, position);
    }
    return text.substr(0, position);
}

std::string withLineFeeds(const std::string& text) {
    std::string lines;
    for (const char c : text) {
        if (c != '\r') lines.push_back(c);
    }
    return lines + "\n";
}

}  // namespace

Terminal::Terminal(bool resultsOnly)
    : sayStream_(resultsOnly ? Stream::errors : Stream::output),
      askStream_(streams::isTerminal(Stream::errors) ? Stream::errors : Stream::output),
      canAsk_(streams::isTerminal(Stream::input) && streams::isTerminal(askStream_)),
      showsProgress_(streams::isTerminal(Stream::errors)) {}

void Terminal::result(const std::string& line) {
    clearProgress();
    write(Stream::output, line + "\n");
}

void Terminal::say(const std::string& text) {
    clearProgress();
    write(sayStream_, withLineFeeds(text));
}

void Terminal::warn(const std::string& text) {
    clearProgress();
    write(Stream::errors, withLineFeeds(text));
}

void Terminal::question(const std::string& text) {
    clearProgress();
    write(canAsk_ ? askStream_ : sayStream_, withLineFeeds(text));
}

bool Terminal::ask(const std::string& prompt, std::string& line,
                   const std::function<bool()>& givenUp) {
    clearProgress();
    write(askStream_, prompt);
    const streams::ReadEnd end = streams::readLine(line, givenUp);
    if (end == streams::ReadEnd::givenUp) write(askStream_, "\n");
    return end == streams::ReadEnd::line;
}

void Terminal::showProgress(const std::string& line) {
    if (!showsProgress_) return;
    const std::size_t width = streams::columns();
    write(Stream::errors, streams::overLine(cutToWidth(line, width - 1), width));
    progressShown_ = true;
}

void Terminal::clearProgress() {
    if (!progressShown_) return;
    write(Stream::errors, streams::overLine("", streams::columns()));
    progressShown_ = false;
}

void Terminal::write(Stream stream, const std::string& text) {
    const bool lost = streams::write(stream, text) == streams::WriteEnd::lost;
    if (lost && stream == Stream::output) outputLost_ = true;
}

}  // namespace coffrelune
