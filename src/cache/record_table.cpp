#include "cache/record_table.h"

#include <algorithm>

#include "cache/record_signature.h"

namespace {

bool lies_before(const cache_row& row, uint64_t offset) {
  return row.offset < offset;
}

}  // namespace

cache_row* record_table::add(uint64_t offset) {
  // Rows mostly come in ascending order; only blocks that overlap bring earlier ones, near the end.
  auto place = rows.end();
  if (!rows.empty() && offset <= rows.back().offset) {
    place = std::lower_bound(rows.begin(), rows.end(), offset, lies_before);
    if (place->offset == offset) return nullptr;
  }
  cache_row& row = *rows.emplace(place);
  row.offset = offset;
  return &row;
}

void record_table::keep_texts(cache_row& row, std::string_view url, std::string_view user,
                              std::string_view filename, std::string_view http_header) {
  const size_t size = url.size() + user.size() + filename.size() + http_header.size();
  if (size == 0) return;
  char* at = static_cast<char*>(arena->memory.allocate(size, 1));
  row.texts = at;
  const auto keep = [&at](std::string_view text) {
    at = std::copy(text.begin(), text.end(), at);
    return static_cast<uint32_t>(text.size());
  };
  row.url_size = keep(url);
  row.user_size = keep(user);
  row.filename_size = keep(filename);
  row.http_header_size = keep(http_header);
}

void record_table::next_block_at(uint64_t position) {
  if (rows.empty() || !take_final) return;
  // A block's search begins at its second place on the grid.
  const auto end = std::lower_bound(rows.begin(), rows.end(), position + block_size, lies_before);
  if (end == rows.begin()) return;
  std::for_each(rows.begin(), end, std::ref(take_final));
  drop_first(static_cast<size_t>(end - rows.begin()));
}

void record_table::drop_first(size_t count) {
  rows.erase(rows.begin(), rows.begin() + static_cast<ptrdiff_t>(count));
  text_arena& left = *arena;
  arena = arena == &arenas[0] ? &arenas[1] : &arenas[0];
  for (cache_row& row : rows) {
    const cache_row old = row;
    keep_texts(row, old.url(), old.user(), old.filename(), old.http_header());
  }
  left.memory.release();
}

std::string_view record_table::directory_of(const cache_row& row) const {
  if (row.directory_index >= directories.size()) return {};
  return directories[row.directory_index];
}
