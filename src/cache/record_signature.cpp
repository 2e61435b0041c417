#include "cache/record_signature.h"

#include <cstdint>

#include "text/le_bytes.h"

uint32_t find_next_record(const uint8_t* bytes, uint64_t size) {
  if (!bytes || size < block_size) return no_record;
  const uint64_t end = size - 4;
  for (uint64_t pos = block_size; pos < end; pos += block_size) {
    const uint32_t four = zk::load_le32(bytes + pos);
    if (is_url_or_leak(four) || four == redr_signature) return static_cast<uint32_t>(pos);
  }
  return no_record;
}
