// URL and LEAK records: one cached or visited address each, both of the same layout.
//
//   0x00  4  "URL " or "LEAK"           0x3C  4  file name offset, 0 for none
//   0x04  4  length in 128-byte blocks  0x40  4  flags
//   0x08  8  last modified, FILETIME    0x44  4  header offset
//   0x10  8  last accessed, FILETIME    0x48  4  header length
//   0x18  4  expires, DOS pair          0x50  4  last sync, DOS pair
//   0x20  4  file size                  0x54  4  count
//   0x34  4  URL offset                 0x5C  4  last accessed of a LEAK record, DOS pair
//   0x38  1  directory index            0x68     strings, up to the record's end
//
// Offsets count from the record's start. All else in the fixed part isn't read.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "text/le_bytes.h"

namespace url_layout {
inline constexpr uint32_t block_count = 0x04;
inline constexpr uint32_t last_mod = 0x08;
inline constexpr uint32_t access = 0x10;
inline constexpr uint32_t expires = 0x18;
inline constexpr uint32_t file_size = 0x20;
inline constexpr uint32_t url_offset = 0x34;
inline constexpr uint32_t directory_index = 0x38;
inline constexpr uint32_t filename_offset = 0x3C;
inline constexpr uint32_t flags = 0x40;
inline constexpr uint32_t header_offset = 0x44;
inline constexpr uint32_t header_length = 0x48;
inline constexpr uint32_t last_sync = 0x50;
inline constexpr uint32_t count = 0x54;
inline constexpr uint32_t leak_access = 0x5C;
inline constexpr uint32_t fixed_size = 0x68;
}  // namespace url_layout

// A decoded record. Its texts stay in the bytes that it came from. They lose the blanks at both
// ends, the header all unprintable bytes there. Where the header begins with the user's marker,
// both it and the user are a literal "-".
struct url_record {
  std::array<uint8_t, url_layout::fixed_size> fixed = {};  // the fixed part as the file has it
  std::string_view url;
  std::string_view filename;
  std::string_view user;
  std::string_view http_header;  // the header span up to the user's marker
  bool valid = false;            // the signature was right; true also where decoding failed later
  uint64_t offset = 0;
  bool in_gap = false;

  uint32_t field32(uint32_t at) const { return zk::load_le32(&fixed[at]); }
  uint64_t field64(uint32_t at) const { return zk::load_le64(&fixed[at]); }
  uint32_t signature() const { return field32(0); }
  uint32_t block_count() const { return field32(url_layout::block_count); }
};

// Decodes the record at `bytes` + `offset`, of which `limit` bytes from `bytes` on may be read; no
// string reaches beyond them. `flag` has no effect. False if there is no such record or its strings
// refuse it.
// Deliberate: if a signature follows in the buffer, the block count in `bytes` is set to the
// distance to it, larger or smaller than before, while `record` keeps the file's own.
bool decode_url_record(url_record& record, uint8_t* bytes, uint64_t offset, uint32_t limit,
                       uint8_t flag);
