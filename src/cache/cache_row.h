// One output row, built from a decoded record.
#pragma once

#include <cstdint>
#include <string>

#include "cache/record_signature.h"
#include "cache/record_texts.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "front/opts/cmd_opts.h"

// Its texts stand in the table that it belongs to, so that a row takes no memory of its own beyond
// its size.
struct cache_row {
  uint64_t offset = ~0ULL;
  uint64_t last_mod = 0;  // FILETIME, 0 for none
  uint64_t access = 0;
  record_texts texts;
  uint32_t signature = 0;
  uint32_t file_size = 0;
  uint32_t count = 0;
  uint32_t flags = 0;    // nothing reads it
  uint32_t expires = 0;  // DOS pairs, date word low, 0 for none
  uint32_t last_sync = 0;
  uint32_t leak_access = 0;
  uint8_t kind = 1;                // the input's file kind; nothing reads it
  uint8_t directory_index = 0xFE;  // row of the directory table
  bool local_time = false;         // the last-mod pair is labelled " local"
  bool valid = false;              // nothing reads it

  bool is_leak() const { return signature == leak_signature; }
  bool is_redirect() const { return signature == redr_signature; }
};

// A run can hold millions of them.
static_assert(sizeof(cache_row) <= 80);

// The input's name as the rows show it: the path, the partition with ":\" behind it, or the disk
// files joined by "; ".
std::string source_name(const cmd_opts& opts);

// Fill a new row from a record, and `texts`, which has space for them, with its texts. Fields that
// were never set, as their fill patterns show, stay 0.
void row_from_url(cache_row& row, const url_record& record, const cmd_opts& opts, char* texts);
void row_from_redr(cache_row& row, const redr_record& record, const cmd_opts& opts, char* texts);
