#pragma once

#include <cstddef>
#include <functional>
#include <string>

/// The three streams that a process is started with, as the system has them.
namespace coffrelune::streams {

enum class Stream { input, output, errors };

/// A person is at the other end.
bool isTerminal(Stream stream);

/// Columns of the terminal behind standard error; 80 when it does not tell, or tells nonsense.
std::size_t columns();

/// `readerGone`: whoever read has seen enough, which is no failure.
enum class WriteEnd { complete, readerGone, lost };

/// Writes UTF-8 text whose lines end with LF. Accents come out right on any terminal; a file or a
/// pipe gets the same bytes on every system.
WriteEnd write(Stream stream, const std::string& text);

enum class ReadEnd { line, noMore, givenUp };

/// Reads one line, UTF-8 without its end, from the input, which is a terminal. `givenUp` may be
/// empty; when it says so (asked several times a second, or when Ctrl-C ends the wait), the line is
/// not waited for any longer.
ReadEnd readLine(std::string& line, const std::function<bool()>& givenUp);

/// What a terminal of `width` columns is to be sent so that `text`, which is shorter, takes the
/// place of its last line and the next one can take the place of this.
std::string overLine(const std::string& text, std::size_t width);

}  // namespace coffrelune::streams
