#include "cache/record_scan.h"

#include <cstring>

#include "cache/record_signature.h"

namespace {

// A new row under the offset, or null where one is already. Rows mostly come in ascending order,
// so the end is where the next one belongs.
cache_row* new_row(record_table& table, uint64_t offset) {
  const size_t before = table.rows.size();
  const auto place = table.rows.try_emplace(table.rows.end(), offset);
  return table.rows.size() != before ? &place->second : nullptr;
}

}  // namespace

std::string_view record_table::keep(std::string_view text) {
  if (text.empty()) return {};
  char* const copy = static_cast<char*>(memory.allocate(text.size(), 1));
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position) {
  cache_row* row = nullptr;
  if (url_record& url = table.url; decode_url_record(url, bytes, 0, limit, 1)) {
    if (url.block_count() >= too_many_blocks) return false;
    row = new_row(table, position);
    if (!row) return true;
    row_from_url(*row, url, opts);
    row->url = table.keep(url.url);
    row->filename = table.keep(url.filename);
    row->http_header = table.keep(url.http_header);
    row->user = table.keep(url.user);
  } else {
    // The count is tested first. A string of noise can be as long as the buffer, and to copy it for
    // each of many candidates would take for ever; an accepted count ends it with its own NULs.
    if (limit < redr_layout::fixed_size) return false;
    if (zk::load_le32(bytes + redr_layout::block_count) >= too_many_blocks) return false;
    redr_record& redr = table.redr;
    if (!decode_redr_record(redr, bytes, 0, limit)) return false;
    row = new_row(table, position);
    if (!row) return true;
    row_from_redr(*row, redr, opts);
    row->url = table.keep(redr.url);
  }
  row->offset = position;
  row->source = table.source;
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
