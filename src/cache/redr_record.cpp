#include "cache/redr_record.h"

#include <cstdint>
#include <cstring>

#include "cache/record_signature.h"
#include "text/le_bytes.h"
#include "text/zk_string.h"

bool decode_redr_record(redr_record& record, const uint8_t* bytes, uint64_t offset,
                        uint32_t limit) {
  record = {};
  if (!bytes || limit < redr_layout::fixed_size || offset > limit - redr_layout::fixed_size)
    return false;
  const uint8_t* const begin = bytes + offset;
  if (zk::load_le32(begin) != redr_signature) return false;
  std::memcpy(record.fixed.data(), begin, redr_layout::fixed_size);
  record.valid = true;
  record.url = zk::trimmed(zk::bounded_string(begin + redr_layout::url, bytes + limit));
  record.offset = static_cast<uint32_t>(offset);
  return true;
}
