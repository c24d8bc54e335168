#pragma once

#include <string>

namespace coffrelune {

/// What follows the program's name in the command line of a process, as Windows keeps it: one text,
/// blanks included. Pairs of double quotes, which only hold a word with blanks together for whoever
/// starts the program, are taken off; a quote without another stays.
std::string argumentText(const std::string& commandLine);

}  // namespace coffrelune
