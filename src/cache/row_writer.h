// Writes the header line and the rows: one line of delimited text for each, with 17 cells. No cell
// is quoted. URLs, file names and headers are shown without commas; all other texts, and all other
// separators, go out as they are and can split a row.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cache/cache_row.h"
#include "opts/cmd_opts.h"
#include "text/line_sink.h"
#include "text/text_line.h"
#include "time/time_format.h"

// Writes the rows of one input: the one that `opts` names at construction. Sink, options and names
// are borrowed.
class row_writer {
 public:
  // `directories` are the names of the input's cache directories, once they are known.
  row_writer(zk::line_sink& out, const cmd_opts& opts, const std::vector<std::string>& directories);

  void write_header_line();

  // `number` is the row's, from 1, and is shown with the carve columns alone.
  void write_row(const cache_row& row, uint64_t number);

 private:
  void append_cell(std::string_view text);
  template <class... Cells>
  void append_cells(const Cells&... cells);
  void append_carve_cells(const cache_row& row, uint64_t number);
  void append_other_cells(const cache_row& row);
  void append_masked_pairs(const cache_row& row);
  void append_locale_pairs(const cache_row& row);
  std::string_view directory_of(const cache_row& row) const;

  const cmd_opts& opts;
  const std::vector<std::string>& directories;
  const std::string source;
  const zk::masked_format utc_format;
  const zk::masked_format local_format;
  zk::text_line line;
};
