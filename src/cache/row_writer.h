// Writes the header line and the rows: one line of delimited text for each, always with the same
// number of cells. No cell is quoted; what keeps a separator out of one is the way in which texts
// are shown, and that is fixed to the comma.
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

// Serves the rows of one input, that which `opts` names as it is made. Sink, options and names are
// borrowed.
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
