// What a run writes, in the words of the tables.
#pragma once

#include <string>

// The header line with the default separator.
extern const std::string header_line;

// Replaces what standard error holds where a line is wiped by <wipe>, a progress line by
// <progress TEXT>, and the header line by <titles>.
std::string in_words(std::string text);
