// The roads by which bytes reach the search in pieces. They only bring bytes; none knows a
// record's layout.
#pragma once

#include <cstdint>

#include "cache/record_scan.h"
#include "front/opts/cmd_opts.h"

// A file of more than this goes the large road, all others are read whole.
inline constexpr int64_t largest_whole_file = 0x1000000;

// Searches the raw source that `partition_path` or else `vmdk_paths` names, in reads of 65536 bytes
// that overlap by 4096. True if it could be opened. A read that fails costs its whole 65536 bytes,
// without a word.
bool scan_raw_source(record_table& table, const cmd_opts& opts);

// Searches the file at `input_path` in blocks of 32768 bytes that overlap by 4096. True if it
// could be opened, whether anything was found or not.
bool scan_large_file(record_table& table, const cmd_opts& opts);
