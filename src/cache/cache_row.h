// One output row, built from a decoded record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "front/cmd_opts.h"

struct cache_row {
  uint32_t signature = 0;
  uint32_t kind = 1;  // the input's file kind
  uint64_t offset = ~0ULL;
  std::string directory;  // filled once the scan is over
  std::string filename;
  uint64_t file_size = 0;
  std::string_view source;  // the input's name, which the table keeps
  uint32_t flags = 0;
  uint32_t count = 0;
  std::string user;
  std::string url;
  std::string http_header;
  bool local_time = false;  // the last-mod pair is labelled " local"
  uint64_t last_mod = 0;    // FILETIME, 0 for none
  uint64_t access = 0;
  uint32_t expires = 0;  // DOS pairs, date word low, 0 for none
  uint32_t last_sync = 0;
  uint32_t leak_access = 0;
  uint8_t directory_index = 0xFE;  // row of the directory table
  bool valid = false;
  bool is_redirect = false;
  bool is_leak = false;
  std::string row_text;  // written alone where no header may be; nothing fills it
};

// The input's name as the rows show it: the path, the partition with ":\" behind it, or the disk
// files joined by "; ".
std::string source_name(const cmd_opts& opts);

// Fill a row from a record, whose strings they take. `source` is borrowed. Fields that were never
// set, as their fill patterns show, stay 0.
void row_from_url(cache_row& row, url_record&& record, const cmd_opts& opts,
                  std::string_view source);
void row_from_redr(cache_row& row, redr_record&& record, const cmd_opts& opts,
                   std::string_view source);
