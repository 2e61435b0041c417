// One output row, built from a decoded record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cache/record_signature.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"

// Its texts are those of the record, in the bytes of the input or in the memory of the table that
// keeps the row.
struct cache_row {
  uint64_t offset = ~0ULL;
  uint64_t last_mod = 0;  // FILETIME, 0 for none
  uint64_t access = 0;
  std::string_view url;
  std::string_view user;
  std::string_view filename;
  std::string_view http_header;
  uint32_t signature = 0;
  uint32_t file_size = 0;
  uint32_t count = 0;
  uint32_t flags = 0;    // not shown
  uint32_t expires = 0;  // DOS pairs, date word low, 0 for none
  uint32_t last_sync = 0;
  uint32_t leak_access = 0;
  uint8_t kind = 1;                // the input's file kind; not shown
  uint8_t directory_index = 0xFE;  // row of the directory table
  bool local_time = false;         // the last-mod pair is labelled " local"
  bool valid = false;              // not shown

  bool is_leak() const { return signature == leak_signature; }
  bool is_redirect() const { return signature == redr_signature; }
};

// The input's name as the rows show it: the path, the partition followed by ":\", or the disk
// files joined by "; ".
std::string source_name(const cmd_opts& opts);

// The row, but for its offset, of a record, whose texts it shares. Fields that were never set, as
// their fill patterns show, become 0.
cache_row row_from_url(const url_record& record, const cmd_opts& opts);
cache_row row_from_redr(const redr_record& record, const cmd_opts& opts);
