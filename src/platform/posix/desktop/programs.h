#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace coffrelune {

// Opening, properties and sounds are asked of the desktop's own small programs instead of its
// libraries: what is not installed then does nothing, the program needs no library for it, and
// coffrelune-console stays as small as it is.

/// The absolute path of a program in the directories of `searchPath` (as in $PATH); empty when
/// there is none. Relative directories are passed over: what happens to lie in the current
/// directory is not meant.
std::string findProgram(std::string_view name, std::string_view searchPath);

/// True for a file that the user may run and that the kernel runs by itself (a binary, or a script
/// that names its interpreter). On a USB key every file bears the right to be run: a document there
/// is none the less a document.
bool isProgramFile(const std::string& native);

/// Words as a shell splits them: blanks separate, quotes and backslashes keep them together.
/// Nothing is expanded; a quote left open lasts to the end.
std::vector<std::string> splitWords(std::string_view text);

/// Starts a program in a session of its own, with nothing to read, and comes back at once. It
/// outlives this process and leaves no zombie in it. `arguments`: the program's absolute path
/// first; a program that cannot be started does nothing.
void startProgram(const std::vector<std::string>& arguments);

/// What became of a program that was run.
struct ProgramEnd {
    int status = -1;  // -1: it could not be run, or was killed
    std::string output;
    std::string errors;  // what it said on standard error
};

/// Runs a program to its end, with `input` to read.
ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& input = {});

}  // namespace coffrelune
