// One output row, built from a decoded record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "front/cmd_opts.h"

// Its texts are borrowed from the table that it stands in, so that a row takes no memory of its
// own beyond its size.
struct cache_row {
  uint32_t signature = 0;
  uint32_t kind = 1;  // the input's file kind
  uint64_t offset = ~0ULL;
  std::string_view directory;  // filled once the scan is over
  std::string_view filename;
  uint64_t file_size = 0;
  std::string_view source;  // the input's name
  uint32_t flags = 0;
  uint32_t count = 0;
  std::string_view user;
  std::string_view url;
  std::string_view http_header;
  uint64_t last_mod = 0;  // FILETIME, 0 for none
  uint64_t access = 0;
  uint32_t expires = 0;  // DOS pairs, date word low, 0 for none
  uint32_t last_sync = 0;
  uint32_t leak_access = 0;
  uint8_t directory_index = 0xFE;  // row of the directory table
  bool local_time = false;         // the last-mod pair is labelled " local"
  bool valid = false;
  bool is_redirect = false;
  bool is_leak = false;
  std::string_view row_text;  // written alone where no header may be; nothing fills it
};

// The input's name as the rows show it: the path, the partition with ":\" behind it, or the disk
// files joined by "; ".
std::string source_name(const cmd_opts& opts);

// Fill a new row, but for its texts, from a record. Fields that were never set, as their fill
// patterns show, stay 0.
void row_from_url(cache_row& row, const url_record& record, const cmd_opts& opts);
void row_from_redr(cache_row& row, const redr_record& record, const cmd_opts& opts);
