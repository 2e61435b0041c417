// From a record to its row, and from the row to its line.
#include <sstream>

#include "cache/index_dat.h"
#include "cache/row_writer.h"
#include "tests/support/check_cases.h"
#include "tests/support/shown.h"
#include "tools/index_text_builder.h"

namespace {

// The header line where it is wanted, and the record's line.
std::string lines_of(index_text_builder bytes, const cmd_opts& opts, bool with_titles = false) {
  record_table table(opts);
  add_record(table, opts, bytes.data(), bytes.size(), 0x4200);
  std::ostringstream out;
  row_writer writer(out, opts);
  if (with_titles) writer.write_header_line();
  writer.write_row(table, table.rows.at(0), 7);
  return out.str();
}

CASES(cache, row, 2, any_number) {
  cmd_opts opts;
  opts.input_path = c[0];
  classify_path(opts);
  return lines_of(index_text_builder(c, 1), opts);
}

CASES(cache, form, 4, any_number) {
  cmd_opts opts;
  opts.verbose = c[0] != "short";
  opts.carve_columns = c[1] == "carve";
  opts.time_format = c[2];
  return in_words(lines_of(index_text_builder(c, 3), opts, true));
}

}  // namespace
