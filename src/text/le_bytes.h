// Reading of on-disk fields: little-endian integers and NUL-terminated strings within a bound.
// Every decoder takes its fields through these, so that bounds are tested in one place.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace zk {

// The little-endian integer at `bytes`, which needs no alignment. The caller has checked that
// all of its bytes may be read.
inline uint16_t load_le16(const uint8_t* bytes) {
  return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}
inline uint32_t load_le32(const uint8_t* bytes) {
  return load_le16(bytes) | static_cast<uint32_t>(load_le16(bytes + 2)) << 16;
}
inline uint64_t load_le64(const uint8_t* bytes) {
  return load_le32(bytes) | static_cast<uint64_t>(load_le32(bytes + 4)) << 32;
}

// Writes `value` at `bytes`, low byte first.
inline void store_le32(uint8_t* bytes, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
}

// The bytes from `begin` up to the first NUL, or up to `end` if there is none before it.
// Borrows them. `begin` must not lie after `end`.
inline std::string_view bounded_string(const uint8_t* begin, const uint8_t* end) {
  const auto most = static_cast<size_t>(end - begin);
  const void* nul = most == 0 ? nullptr : std::memchr(begin, 0, most);
  const size_t length = nul ? static_cast<size_t>(static_cast<const uint8_t*>(nul) - begin) : most;
  return {reinterpret_cast<const char*>(begin), length};
}

}  // namespace zk
