// The rows of one input, in ascending offset, and the memory in which they and their texts stand.
#pragma once

#include <cstdint>
#include <deque>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "cache/cache_row.h"

// Rows can outnumber all else that a run holds, so each is small, and what they share is stored
// once.
struct record_table {
  explicit record_table(const cmd_opts& opts) : source(source_name(opts)) {}
  record_table(const record_table&) = delete;
  record_table& operator=(const record_table&) = delete;

  // A new row under the offset, or null where one is already: the first that came stays. The
  // pointer is good until the next row is added.
  cache_row* add(uint64_t offset);

  // Copies a new row's texts into the table's memory.
  void keep_texts(cache_row& row, std::string_view url, std::string_view user = {},
                  std::string_view filename = {}, std::string_view http_header = {});

  // The row's cache directory, empty where its index lies past the last one.
  std::string_view directory_of(const cache_row& row) const;

  const std::string source;              // the input's name
  std::vector<std::string> directories;  // filled once the scan is over; at most 256
  // What a table holds goes all at once, so its memory is taken in large pieces.
  std::pmr::monotonic_buffer_resource memory;
  std::pmr::deque<cache_row> rows{&memory};
  // The candidate that is being decoded, here so that its strings keep their room.
  url_record decoded_url;
  redr_record decoded_redr;
};
