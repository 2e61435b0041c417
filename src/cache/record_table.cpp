#include "cache/record_table.h"

#include <algorithm>

cache_row* record_table::add(uint64_t offset) {
  // Rows mostly come in ascending order; only blocks that overlap bring earlier ones, near the end.
  auto place = rows.end();
  if (!rows.empty() && offset <= rows.back().offset) {
    const auto before = [](const cache_row& row, uint64_t wanted) { return row.offset < wanted; };
    place = std::lower_bound(rows.begin(), rows.end(), offset, before);
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
  char* at = static_cast<char*>(memory.allocate(size, 1));
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

std::string_view record_table::directory_of(const cache_row& row) const {
  if (row.directory_index >= directories.size()) return {};
  return directories[row.directory_index];
}
