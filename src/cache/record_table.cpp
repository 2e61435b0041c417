#include "cache/record_table.h"

#include <algorithm>
#include <iterator>

#include "cache/record_signature.h"

cache_row* record_table::add(uint64_t offset) {
  // Rows mostly come in ascending order; only blocks that overlap bring earlier ones, near the end.
  auto place = rows.end();
  while (place != rows.begin() && std::prev(place)->offset >= offset) --place;
  if (place != rows.end() && place->offset == offset) return nullptr;
  cache_row& row = place == rows.end() ? rows.emplace_back() : *rows.emplace(place);
  row.offset = offset;
  return &row;
}

void record_table::next_block_at(uint64_t position) {
  if (rows.empty() || !take_final) return;
  // A block's search begins at its second place on the grid.
  const uint64_t first_open = position + block_size;
  if (rows.front().offset >= first_open) return;
  for (; !rows.empty() && rows.front().offset < first_open; rows.pop_front()) {
    take_final(rows.front());
  }
  text_arena& left = *arena;
  arena = arena == &arenas[0] ? &arenas[1] : &arenas[0];
  for (cache_row& row : rows) {
    char* const space = text_space(row.texts.size());
    std::copy_n(row.texts.begin, row.texts.size(), space);
    row.texts.begin = space;
  }
  left.memory.release();
}

std::string_view record_table::directory_of(const cache_row& row) const {
  if (row.directory_index >= directories.size()) return {};
  return directories[row.directory_index];
}
