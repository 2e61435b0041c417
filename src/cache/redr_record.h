// REDR records: one address that the cache redirects.
//
//   0x00  4  "REDR"
//   0x04  4  length in 128-byte blocks
//   0x10     URL, up to its NUL
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "text/le_bytes.h"

namespace redr_layout {
inline constexpr uint32_t block_count = 0x04;
inline constexpr uint32_t url = 0x10;
inline constexpr uint32_t fixed_size = 0x11;  // the URL's first byte is among them
}  // namespace redr_layout

// A decoded record. Its URL is the file's, less the blanks at both ends, and stays in the bytes
// that it came from.
struct redr_record {
  std::array<uint8_t, redr_layout::fixed_size> fixed = {};
  std::string_view url;
  bool valid = false;
  uint64_t offset = 0;
  bool in_gap = false;

  uint32_t signature() const { return zk::load_le32(fixed.data()); }
  uint32_t block_count() const { return zk::load_le32(&fixed[redr_layout::block_count]); }
};

// Decodes the record at `bytes` + `offset`, of which `limit` bytes from `bytes` on may be read.
// False if there is none. An empty URL is accepted.
bool decode_redr_record(redr_record& record, const uint8_t* bytes, uint64_t offset, uint32_t limit);
