#include "cache/record_scan.h"
#include <cstdint>

#include "cache/cache_row.h"
#include "cache/record_signature.h"
#include "cache/record_table.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"
#include "text/le_bytes.h"

bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position) {
  const auto add = [&](cache_row row) {
    row.offset = position;
    table.add(row);
    return true;
  };
  url_record url;
  if (decode_url_record(url, bytes, 0, limit, 1)) {
    return url.block_count() < too_many_blocks && add(row_from_url(url, opts));
  }
  // The count is tested first. Else each false candidate in noise would search for a distant NUL,
  // which is quadratic. A count below ten has zero bytes, which end any earlier record's URL.
  if (limit < redr_layout::fixed_size) return false;
  if (zk::load_le32(bytes + redr_layout::block_count) >= too_many_blocks) return false;
  redr_record redr;
  return decode_redr_record(redr, bytes, 0, limit) && add(row_from_redr(redr, opts));
}

bool scan_buffer(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t size,
                 uint64_t base, uint32_t overlap) {
  uint32_t done = 0;
  uint32_t left = size;
  uint32_t next = find_next_record(bytes, left);
  bool found = false;
  while (left > block_size && next != no_record && next < left + overlap) {
    done += next;
    left -= next;
    add_record(table, opts, bytes + done, left, base + done);
    next = find_next_record(bytes + done, left);
    found = true;
  }
  return found;
}
