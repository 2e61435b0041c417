// The rows of one input that aren't written yet, in ascending offset, and the memory in which their
// texts stand. The table is a window that moves over the input: rows come in as blocks are searched
// and, where it is told of each next block, leave as soon as they are final. Most are so at once,
// and aren't kept at all.
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

  // Takes a row whose texts may be gone after the call. The first one under an offset stays, others
  // are dropped. Throws std::bad_alloc.
  void add(const cache_row& row) {
    if (rows.empty() && is_final(row)) return take_final(row);  // as nearly all are
    add_to_kept(row);
  }

  // Whether a row under the offset is kept.
  bool holds(uint64_t offset) const { return !rows.empty() && has_kept(offset); }

  // Tells, ahead of a block's search, that all later blocks begin at `position` or behind it. A row
  // ahead of the first place that they can search is final once the search of this block is past
  // it: none can come ahead of it or under its offset any more. A table that isn't told keeps all.
  void next_block_at(uint64_t position);

  // Tells that the block's search has ended: all of its rows that can be final are.
  void end_block();

  // The row's cache directory, empty where its index lies past the last one.
  std::string_view directory_of(const cache_row& row) const;

  const std::string source;              // the input's name
  std::vector<std::string> directories;  // filled once the scan is over; at most 256
  std::deque<cache_row> rows;
  std::function<void(const cache_row&)> take_final;  // gets each row that is final
  // The candidate that is being decoded, here so that none is made for each.
  url_record decoded_url;
  redr_record decoded_redr;
  cache_row decoded_row;

 private:
  void add_to_kept(const cache_row& row);
  bool has_kept(uint64_t offset) const;
  bool is_final(const cache_row& row) const { return row.offset < first_open; }
  void release_final();
  void insert(const cache_row& row);
  void keep_texts(cache_row& row);

  uint64_t first_open = 0;  // the first place that later blocks can search

  // At the end of a block, the texts of the few rows that stay are copied to the other arena, and
  // this one is emptied at once. Its first texts stand in `first`, so that a small input takes no
  // more memory.
  struct text_arena {
    std::array<char, 8192> first;
    std::pmr::monotonic_buffer_resource memory{first.data(), first.size()};
  };

  std::array<text_arena, 2> arenas;
  text_arena* arena = arenas.data();
};
