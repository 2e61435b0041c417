#include "cache/record_table.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "cache/cache_row.h"
#include "cache/record_signature.h"

record_table::kept_row::kept_row(const cache_row& from) : row(from) {
  std::string_view* const all[] = {&row.url, &row.user, &row.filename, &row.http_header};
  size_t size = 0;
  for (const std::string_view* text : all) size += text->size();
  texts = std::make_unique_for_overwrite<char[]>(size);
  char* place = texts.get();
  for (std::string_view* text : all) {
    char* const end = std::copy(text->begin(), text->end(), place);
    *text = {place, text->size()};
    place = end;
  }
}

void record_table::add(const cache_row& row) {
  assert(row.offset >= first_searched);
  release_before(std::min(row.offset, first_open));
  auto place = rows.end();
  if (!rows.empty() && rows.back().row.offset >= row.offset) {
    // Only an overlap brings a row again, or one that belongs before others.
    const auto is_before = [&row](const kept_row& kept) { return kept.row.offset < row.offset; };
    place = std::partition_point(rows.begin(), rows.end(), is_before);
    if (place->row.offset == row.offset) return;  // the first one stays
  }
  if (row.offset < first_open) return take_final(row);  // all before it have left
  rows.emplace(place, row);
}

void record_table::next_chunk_at(uint64_t position) {
  if (keeps_all) return;
  assert(position + block_size >= first_open);
  first_searched = first_open;
  first_open = position + block_size;
}

void record_table::end_input() {
  for (; !rows.empty(); rows.pop_front()) take_final(rows.front().row);
}

void record_table::release_before(uint64_t offset) {
  for (; !rows.empty() && rows.front().row.offset < offset; rows.pop_front()) {
    take_final(rows.front().row);
  }
}
