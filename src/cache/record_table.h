// The rows of one input that aren't written yet, in ascending offset, and the memory in which their
// texts stand. The table is a window that moves over the input: rows come in as blocks are searched
// and, where `take_final` is set, leave as soon as they are final.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "cache/cache_row.h"

struct record_table {
  explicit record_table(const cmd_opts& opts) : source(source_name(opts)) {}
  record_table(const record_table&) = delete;
  record_table& operator=(const record_table&) = delete;

  // A new row under the offset, or null where one is already: the first that came stays. The
  // pointer is good until the next row is added.
  cache_row* add(uint64_t offset);

  // Space for a row's texts, good until rows leave. Throws std::bad_alloc.
  char* text_space(size_t size) { return static_cast<char*>(arena->memory.allocate(size, 1)); }

  // Tells that all later blocks begin at `position` or behind it. The rows ahead of the first place
  // that such a block can search are final: none can come ahead of them or under their offsets any
  // more. They go to `take_final` and leave the table. Without a `take_final` they stay.
  void next_block_at(uint64_t position);

  // The row's cache directory, empty where its index lies past the last one.
  std::string_view directory_of(const cache_row& row) const;

  const std::string source;              // the input's name
  std::vector<std::string> directories;  // filled once the scan is over; at most 256
  std::deque<cache_row> rows;
  std::function<void(const cache_row&)> take_final;
  // The candidate that is being decoded, here so that none is made for each.
  url_record decoded_url;
  redr_record decoded_redr;

 private:
  // When rows leave, the texts of the few that stay are copied to the other arena, and this one is
  // emptied at once. Its first texts stand in `first`, so that a small input takes no more memory.
  struct text_arena {
    std::array<char, 8192> first;
    std::pmr::monotonic_buffer_resource memory{first.data(), first.size()};
  };

  std::array<text_arena, 2> arenas;
  text_arena* arena = arenas.data();
};
