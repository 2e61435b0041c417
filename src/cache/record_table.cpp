#include "cache/record_table.h"

#include <algorithm>

#include "cache/record_signature.h"

void record_table::add_to_kept(const cache_row& row) {
  // Only blocks that overlap bring rows ahead of others, or again.
  if (!rows.empty() && rows.back().offset >= row.offset) return insert(row);
  release_final();
  if (is_final(row)) return take_final(row);  // and so are all ahead of it, none of which is left
  keep_texts(rows.emplace_back(row));
}

void record_table::insert(const cache_row& row) {
  if (holds(row.offset)) return;
  const auto is_ahead = [&row](const cache_row& each) { return each.offset < row.offset; };
  const auto ahead = std::find_if(rows.rbegin(), rows.rend(), is_ahead);
  keep_texts(*rows.insert(ahead.base(), row));
}

bool record_table::has_kept(uint64_t offset) const {
  const auto not_behind = [offset](const cache_row& row) { return row.offset <= offset; };
  const auto last = std::find_if(rows.rbegin(), rows.rend(), not_behind);
  return last != rows.rend() && last->offset == offset;
}

void record_table::next_block_at(uint64_t position) {
  // A block's search begins at its second place on the grid.
  first_open = position + block_size;
}

void record_table::end_block() {
  release_final();
  if (first_open == 0) return;  // all rows wait
  text_arena& left = *arena;
  arena = arena == &arenas[0] ? &arenas[1] : &arenas[0];
  for (cache_row& row : rows) keep_texts(row);
  left.memory.release();
}

void record_table::release_final() {
  for (; !rows.empty() && is_final(rows.front()); rows.pop_front()) take_final(rows.front());
}

// Copies the texts to the table's memory.
void record_table::keep_texts(cache_row& row) {
  row.texts.move_to(static_cast<char*>(arena->memory.allocate(row.texts.size(), 1)));
}

std::string_view record_table::directory_of(const cache_row& row) const {
  if (row.directory_index >= directories.size()) return {};
  return directories[row.directory_index];
}
