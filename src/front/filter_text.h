// Filter options, compiled into path_filter entries. Every text compiles to something.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "front/arguments.h"
#include "opts/path_filter.h"

using filter_list = std::vector<path_filter>;

// Replaces `out` by one entry for each piece of `text`, which is split at commas, or else at bars.
// A piece "*" takes every path and is then the only entry. False if there is no entry.
bool parse_filter_text(filter_list& out, std::string text);

// Replaces `out` by the numbers between `separator`s, each cut to a byte; what isn't a number gives
// 0.
void parse_byte_list(std::vector<uint8_t>& out, const std::string& text, char separator, bool hex);

// Appends the entries of a -filter or -filter_skip value, and takes -filter_path, whose value is
// stored in every entry that is then there. Always true.
bool add_filter(filter_list& filters, argument_list& args, const std::string& value);

// Appends the entry of a -filter_sig value, hexadecimal bytes and after a bar or a comma their
// offset in the file. Always true.
bool add_signature_filter(filter_list& filters, const std::string& value);
