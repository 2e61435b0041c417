// From a record to its row, and from the row to its line.
#include <ios>
#include <ostream>
#include <sstream>

#include "cache/cache_row.h"
#include "cache/index_dat.h"
#include "cache/record_scan.h"
#include "cache/record_table.h"
#include "cache/row_writer.h"
#include "opts/cmd_opts.h"
#include "tests/support/check_cases.h"
#include "tests/support/shown.h"
#include "tools/index_text_builder.h"
#include "uni/fileio_output.h"

namespace {

// The header line where it is wanted, and the record's line.
std::string lines_of(index_text_builder bytes, const cmd_opts& opts, bool with_titles = false) {
  std::ostringstream out;
  uni::stream_sink sink(out);
  const strings no_directories;
  row_writer writer(sink, opts, no_directories);
  if (with_titles) writer.write_header_line();
  record_table table([&](const cache_row& row) { writer.write_row(row, 7); });
  add_record(table, opts, bytes.data(), bytes.size(), 0x4200);
  table.end_input();
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

// Takes all but the second line.
struct failing_once : std::stringbuf {
  std::streamsize xsputn(const char*, std::streamsize size) override {
    return ++lines == 2 ? 0 : size;
  }
  int lines = 0;
};

TEST(Row, NoneFollowsOneThatCouldNotBeWritten) {
  const cmd_opts opts;
  const strings no_directories;
  failing_once buffer;
  std::ostream out(&buffer);
  uni::stream_sink sink(out);
  row_writer writer(sink, opts, no_directories);
  for (int i = 0; i < 3; ++i) writer.write_row({}, 1);
  EXPECT_EQ(buffer.lines, 2);
}

}  // namespace
