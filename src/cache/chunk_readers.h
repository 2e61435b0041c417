// Search large inputs chunk by chunk: a file, an image or a disk. They tell the table when rows
// must wait, and show progress. None knows a record's layout.
#pragma once

#include <cstdint>

#include "cache/record_table.h"
#include "opts/cmd_opts.h"

// A file of at most this many bytes is read whole, a larger one by scan_large_file.
inline constexpr int64_t largest_whole_file = 0x1000000;

// Searches the raw source that `partition_path` or else `vmdk_paths` names, in reads of 65536 bytes
// that overlap by 4096. True if it could be opened. Where a read fails, its 65536 bytes are
// skipped and nothing reports it.
bool scan_raw_source(record_table& table, const cmd_opts& opts);

// Searches the file at `input_path` in chunks of 32768 bytes that overlap by 4096. True if it
// could be opened, whether anything was found or not.
bool scan_large_file(record_table& table, const cmd_opts& opts);
