#include "cache/record_scan.h"

#include "cache/record_signature.h"

namespace {

// A place where a signature was met.
struct candidate {
  uint8_t* bytes;
  uint32_t limit;  // how many of them may be read
  uint32_t next;   // the distance to the next signature, as find_next_record gives it
  uint64_t position;
};

bool add_candidate(record_table& table, const cmd_opts& opts, const candidate& place) {
  cache_row& row = table.decoded_row;
  if (url_record& url = table.decoded_url;
      decode_url_at(url, place.bytes, place.limit, place.next)) {
    if (url.block_count() >= too_many_blocks) return false;
    row_from_url(row, url, opts);
  } else {
    // The count is tested first. A string of noise can be as long as the buffer, and to seek its
    // end for each of many candidates would take for ever; an accepted count ends it with its own
    // NULs.
    if (place.limit < redr_layout::fixed_size) return false;
    if (zk::load_le32(place.bytes + redr_layout::block_count) >= too_many_blocks) return false;
    redr_record& redr = table.decoded_redr;
    if (!decode_redr_record(redr, place.bytes, 0, place.limit)) return false;
    row_from_redr(row, redr, opts);
  }
  row.offset = place.position;
  table.add(row);
  return true;
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
      // All that decoding it again would add. A short read leaves these bytes to the next search.
      correct_block_count(bytes + done, left, next);
    } else {
      add_candidate(table, opts, {bytes + done, left, next, base + done});
    }
  }
  return found;
}
