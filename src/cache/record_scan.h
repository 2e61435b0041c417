// The one search by which records are found, whatever road brought the bytes, and the table that
// holds their rows.
#pragma once

#include <cstdint>
#include <map>
#include <memory_resource>
#include <string>
#include <string_view>

#include "cache/cache_row.h"
#include "front/cmd_opts.h"

// The rows of one input in ascending offset, and the texts that they borrow. The first row that is
// stored under an offset stays.
struct record_table {
  explicit record_table(const cmd_opts& opts) : source(source_name(opts)) {}
  record_table(const record_table&) = delete;
  record_table& operator=(const record_table&) = delete;

  // Copies a text into the table's memory, where it lasts as long as the table.
  std::string_view keep(std::string_view text);

  const std::string source;  // the input's name
  // What a table holds goes all at once, so its memory is taken in large pieces.
  std::pmr::monotonic_buffer_resource memory;
  std::pmr::map<uint64_t, cache_row> rows{&memory};
  // The candidate that is being decoded, here so that its strings keep their room.
  url_record url;
  redr_record redr;
};

// Tries the candidate at `bytes`, of which `limit` bytes may be read, as a URL or LEAK record and
// then as a REDR record. One that is accepted and declares fewer than 10 blocks goes into the table
// under `position`, its absolute offset, unless a row is there. False if it was refused.
bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position);

// Tries every signature on the block grid of `bytes`, which lie at the absolute offset `base`. The
// very first block is never tried. `bytes` are written to where decode_url_record says so. The
// result says whether any signature was met, accepted or not.
bool scan_buffer(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t size,
                 uint64_t base, uint32_t overlap);
