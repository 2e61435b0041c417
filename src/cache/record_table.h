// The rows of one input that aren't written yet, in ascending offset: a window that moves over the
// input. Rows come in as it is searched, and leave once they are final: no later search can find a
// record before them, or at their offset again. The table alone decides that.
//
// A large input is searched in chunks that overlap. Byte 128 of a chunk is the first that its
// search tries. Everything before byte 128 of the next chunk is final once this search has passed
// it. Most rows are final as they come, and aren't kept at all.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <utility>

#include "cache/cache_row.h"

class record_table {
 public:
  // Gets the rows in ascending offset. The texts of a row are gone after the call.
  using row_taker = std::function<void(const cache_row&)>;

  explicit record_table(row_taker final_rows) : take_final(std::move(final_rows)) {}
  record_table(const record_table&) = delete;
  record_table& operator=(const record_table&) = delete;

  // Takes a row whose texts may be gone after the call. The first one at an offset stays, others
  // are dropped. Within a chunk rows come in ascending offset. Throws std::bad_alloc.
  void add(const cache_row& row);

  bool empty() const { return rows.empty(); }

  // No row leaves before the input's end. Call it before the first row.
  void keep_all() { keeps_all = true; }

  // Tells, before a chunk's search, that all later chunks begin at `position` or after it.
  void next_chunk_at(uint64_t position);

  // Tells that the chunk's search has ended, or that of the whole input.
  void end_chunk() { release_before(first_open); }
  void end_input();

 private:
  // A row with a copy of its texts.
  struct kept_row {
    explicit kept_row(const cache_row& from);
    cache_row row;
    std::unique_ptr<char[]> texts;
  };

  void release_before(uint64_t offset);

  std::deque<kept_row> rows;
  row_taker take_final;
  bool keeps_all = false;
  uint64_t first_searched = 0;  // the first place that this chunk's search can reach
  uint64_t first_open = 0;      // the same of later ones: rows before it are final
};
