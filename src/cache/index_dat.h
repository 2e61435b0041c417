// The index.dat container: its header, its table of cache directories, its HASH blocks, and its
// kind as its path tells it. Records are found without any of this; a run takes only the directory
// names and the kind from here.
//
//   0x00 15  "Client UrlCache"
//   0x20  4  offset of the first HASH block, 0 for none
//   0x48  4  number of rows in the directory table
//   0x50     the table: rows of 12 bytes, an 8-byte name first
//
//   HASH block:
//   0x00  4  "HASH"
//   0x04  4  length in 128-byte blocks
//   0x08  4  offset of the next HASH block, 0 at the end
//   0x10     entries of 8 bytes: a key, and the offset of a record
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"

namespace index_layout {
inline constexpr uint32_t first_hash = 0x20;
inline constexpr uint32_t directory_count = 0x48;
inline constexpr uint32_t directory_table = 0x50;
inline constexpr uint32_t directory_row_size = 12;
inline constexpr uint32_t directory_name_size = 8;
inline constexpr uint32_t header_size = 0x51;  // one byte into the table
}  // namespace index_layout

namespace hash_layout {
inline constexpr uint32_t block_count = 0x04;
inline constexpr uint32_t next = 0x08;
inline constexpr uint32_t entries = 0x10;
inline constexpr uint32_t entry_size = 8;
inline constexpr uint32_t header_size = 0x18;  // the first entry is among them
inline constexpr uint32_t end_key = 0xDEADBEEF;
}  // namespace hash_layout

// What an index holds, told by its path. Only `mshist` changes what comes out.
namespace file_kind {
inline constexpr uint32_t other = 1;
inline constexpr uint32_t history = 2;
inline constexpr uint32_t mshist = 3;
inline constexpr uint32_t temporary_internet_files = 4;
inline constexpr uint32_t cookies = 5;
inline constexpr uint32_t temp = 6;
}  // namespace file_kind

struct hash_entry {
  uint32_t key;
  uint32_t record_offset;
};

struct hash_block {
  std::array<uint8_t, hash_layout::header_size> fixed = {};
  bool parsed = false;
  std::vector<hash_entry> entries;
  std::vector<url_record> url_records;  // the texts of these stay in the file's bytes
  std::vector<redr_record> redr_records;
};

// A span of the file that a known record takes.
struct hash_range {
  uint64_t offset = 0;
  uint32_t length = 0;     // in bytes
  int32_t url_index = -1;  // the record's place in its block's records, or among those of the gaps
  int32_t redr_index = -1;
  std::vector<uint32_t> blocks;  // the HASH blocks that list it; all ones for a gap's
  bool from_gap = false;
};

struct cache_container {
  std::array<uint8_t, index_layout::header_size> header = {};
  std::vector<std::string> directories;  // in table order, each of 8 bytes, NULs included
  bool parsed = false;                   // the header's signature was right
  // What follows is filled by walk_hash_chain alone. Texts of records stay in the file's bytes.
  std::vector<hash_block> hash_blocks;  // in the chain's order
  std::map<uint64_t, hash_range> occupied;
  std::vector<url_record> gap_urls;
  std::vector<redr_record> gap_redrs;
};

// Copies the header. False, with nothing copied, for fewer than 81 bytes or null; false too where
// the signature is wrong.
bool read_header(cache_container& container, const uint8_t* bytes, uint32_t size);

// Despite its name, returns an offset: that of `span` from `base`, or 0 if `need` bytes from it
// don't fit the `size` bytes at `base`.
// Deliberate: a span that ends exactly at the end, and one at the very start, give 0 too.
uint32_t range_fits(const uint8_t* base, const uint8_t* span, uint64_t need, uint64_t size);

// Sets `opts.file_kind` by `opts.input_path`; the case counts. False if no name matched, which
// makes it `other`, or there is no path, which leaves it alone.
bool classify_path(cmd_opts& opts);

// Appends the names of the directory table. False if it doesn't fit.
bool read_directories(cache_container& container, const uint8_t* bytes, uint32_t size);

// Replaces `directories` by the names that the directory table of a whole file gives to the
// directory indexes of its rows. False, with the names as they were, if the header is wrong or the
// table doesn't fit.
bool attach_directories(cache_container& container, std::vector<std::string>& directories,
                        const uint8_t* bytes, uint32_t size);

// Reads the HASH block at `offset` and decodes the records that it lists. False if there is none,
// its length exceeds the file's or its first entry reaches the file's end.
// Deliberate: the list is read beyond the block's own end, to a stop entry or the end of the file;
// and a URL record counts where its signature is right, even if its strings refuse it.
bool read_hash_block(hash_block& block, uint8_t* bytes, uint64_t offset, uint64_t size);
