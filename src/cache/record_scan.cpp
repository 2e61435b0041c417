#include "cache/record_scan.h"

#include "cache/record_signature.h"

bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position) {
  cache_row& row = table.decoded_row;
  if (url_record& url = table.decoded_url; decode_url_record(url, bytes, 0, limit, 1)) {
    if (url.block_count() >= too_many_blocks) return false;
    row_from_url(row, url, opts);
  } else {
    // The count is tested first. A string of noise can be as long as the buffer, and to seek its
    // end for each of many candidates would take for ever; an accepted count ends it with its own
    // NULs.
    if (limit < redr_layout::fixed_size) return false;
    if (zk::load_le32(bytes + redr_layout::block_count) >= too_many_blocks) return false;
    redr_record& redr = table.decoded_redr;
    if (!decode_redr_record(redr, bytes, 0, limit)) return false;
    row_from_redr(row, redr, opts);
  }
  row.offset = position;
  table.add(row);
  return true;
}

bool scan_buffer(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t size,
                 uint64_t base, uint32_t overlap) {
  uint32_t done = 0;
  uint32_t left = size;
  bool found = false;
  for (;;) {
    const uint32_t pos = find_next_record(bytes + done, left);
    if (left <= block_size || pos == no_record || pos >= left + overlap) return found;
    done += pos;
    left -= pos;
    add_record(table, opts, bytes + done, left, base + done);
    found = true;
  }
}
