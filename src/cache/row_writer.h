// Writes the header line and the rows: one line of delimited text for each, always with the same
// number of cells. No cell is quoted; what keeps a separator out of one is the way in which texts
// are shown, and that is fixed to the comma.
#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "cache/record_table.h"
#include "opts/cmd_opts.h"
#include "text/text_line.h"
#include "time/time_format.h"
#include "uni/fileio_output.h"

// Serves the rows of one input. The stream and the options are borrowed. A results file's lines are
// composed in the buffer of its stream, where they fit; all others in one reused text, which is
// handed to the stream whole, and that is then flushed. A failing stream isn't looked at.
class row_writer {
 public:
  row_writer(std::ostream& out, const cmd_opts& opts);

  void write_header_line();

  // Writes a row of the table. `number` is the row's, from 1, and is shown with the carve columns
  // alone.
  void write_row(const record_table& table, const cache_row& row, uint64_t number);

 private:
  void append_cell(std::string_view text);
  void append_carve_cells(const cache_row& row, uint64_t number);
  void append_other_cells(const record_table& table, const cache_row& row);
  void append_masked_pairs(const cache_row& row);
  void append_locale_pairs(const cache_row& row);
  void begin_line();
  void end_line();

  std::ostream& out;
  uni::fileio_ostream* const file_buffer;  // a results file's; null for any other stream
  const cmd_opts& opts;
  const zk::masked_format utc_format;
  const zk::masked_format local_format;
  zk::text_line line;
};
