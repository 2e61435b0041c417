// The signatures that a record begins with, and the search for the next one on the block grid.
#pragma once

#include <cstdint>

// Records begin at multiples of this, and are as many of it long as their block count says.
inline constexpr uint32_t block_size = 128;

// A record that declares this many blocks, or more, is taken for noise and dropped.
inline constexpr uint32_t too_many_blocks = 10;

// Four bytes as the little-endian number that they make.
constexpr uint32_t four_bytes(const char (&text)[5]) {
  uint32_t number = 0;
  for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<uint8_t>(text[i]);
  return number;
}

inline constexpr uint32_t url_signature = four_bytes("URL ");
inline constexpr uint32_t leak_signature = four_bytes("LEAK");
inline constexpr uint32_t redr_signature = four_bytes("REDR");
inline constexpr uint32_t hash_signature = four_bytes("HASH");

inline bool is_url_or_leak(uint32_t signature) {
  return signature == url_signature || signature == leak_signature;
}

inline constexpr uint32_t no_record = 0xFFFFFFFF;

// The distance from `bytes` to the next record signature at a multiple of 128 bytes, 128 being the
// first that is tested and the last lying more than 4 bytes before the end. `no_record` if there
// is none, `size` is below 128 or `bytes` is null.
uint32_t find_next_record(const uint8_t* bytes, uint64_t size);
