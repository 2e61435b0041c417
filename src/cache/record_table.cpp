#include "cache/record_table.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <string_view>

#include "cache/cache_row.h"
#include "cache/record_signature.h"

record_table::kept_row::kept_row(const cache_row& from) : row(from) {
  texts.reserve(row.url.size() + row.user.size() + row.filename.size() + row.http_header.size());
  for (const std::string_view text : {row.url, row.user, row.filename, row.http_header}) {
    texts.insert(texts.end(), text.begin(), text.end());
  }
  const char* begin = texts.data();
  for (std::string_view* text : {&row.url, &row.user, &row.filename, &row.http_header}) {
    *text = {begin, text->size()};
    begin += text->size();
  }
}

void record_table::add(const cache_row& row) {
  assert(row.offset >= first_searched);
  release_ahead_of(std::min(row.offset, first_open));
  if (row.offset < first_open) {
    // What is kept ahead of it has left.
    if (!holds(row.offset)) take_final(row);
    return;
  }
  const auto place = first_not_ahead_of(row.offset);
  if (place == rows.end() || place->row.offset != row.offset) rows.emplace(place, row);
}

bool record_table::holds(uint64_t offset) const {
  if (rows.empty()) return false;
  const auto place = first_not_ahead_of(offset);
  return place != rows.end() && place->row.offset == offset;
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

record_table::kept_rows::const_iterator record_table::first_not_ahead_of(uint64_t offset) const {
  return std::lower_bound(rows.begin(), rows.end(), offset,
                          [](const kept_row& kept, uint64_t at) { return kept.row.offset < at; });
}

void record_table::release_ahead_of(uint64_t offset) {
  for (; !rows.empty() && rows.front().row.offset < offset; rows.pop_front()) {
    take_final(rows.front().row);
  }
}
