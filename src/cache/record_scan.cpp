#include "cache/record_scan.h"

#include "cache/record_signature.h"

namespace {

// Rows mostly come in ascending order, so the end is where the next one belongs.
void insert_row(record_table& table, cache_row&& row) {
  table.rows.try_emplace(table.rows.end(), row.offset, std::move(row));
}

}  // namespace

bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position) {
  cache_row row;
  if (url_record url; decode_url_record(url, bytes, 0, limit, 1)) {
    if (url.block_count() >= too_many_blocks) return false;
    url.offset = position;
    row_from_url(row, std::move(url), opts, table.source);
  } else {
    redr_record redr;
    if (!decode_redr_record(redr, bytes, 0, limit)) return false;
    if (redr.block_count() >= too_many_blocks) return false;
    redr.offset = position;
    row_from_redr(row, std::move(redr), opts, table.source);
  }
  insert_row(table, std::move(row));
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
