#include "cache/record_scan.h"
#include <cstdint>

#include "cache/cache_row.h"
#include "cache/record_signature.h"
#include "cache/record_table.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"
#include "text/le_bytes.h"

namespace {

// A place where a signature was met.
struct candidate {
  uint8_t* bytes;
  uint32_t limit;  // how many of them may be read
  uint32_t next;   // the distance to the next signature, as find_next_record gives it
  uint64_t position;
};

bool add_row(record_table& table, cache_row row, uint64_t position) {
  row.offset = position;
  table.add(row);
  return true;
}

bool add_candidate(record_table& table, const cmd_opts& opts, const candidate& place) {
  url_record url;
  if (decode_url_at(url, place.bytes, place.limit, place.next)) {
    if (url.block_count() >= too_many_blocks) return false;
    return add_row(table, row_from_url(url, opts), place.position);
  }
  // The count is tested first: to seek the end of a string in noise, for each of many candidates,
  // takes quadratic time. An accepted count holds a NUL, which ends the string.
  if (place.limit < redr_layout::fixed_size) return false;
  if (zk::load_le32(place.bytes + redr_layout::block_count) >= too_many_blocks) return false;
  redr_record redr;
  if (!decode_redr_record(redr, place.bytes, 0, place.limit)) return false;
  return add_row(table, row_from_redr(redr, opts), place.position);
}

}  // namespace

bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position) {
  return add_candidate(table, opts, {bytes, limit, find_next_record(bytes, limit), position});
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
    next = find_next_record(bytes + done, left);
    found = true;
    if (table.holds(base + done)) {
      // A block count that decoding would correct is its one side effect on the bytes, and it must
      // show in them: where the next read is short, they are searched again.
      correct_block_count(bytes + done, left, next);
    } else {
      add_candidate(table, opts, {bytes + done, left, next, base + done});
    }
  }
  return found;
}
