// From a record to its row, and from the row to its line.
#include <gtest/gtest.h>

#include <sstream>

#include "cache/index_dat.h"
#include "cache/row_writer.h"
#include "tests/cache/index_text.h"

namespace {

// Counts how often its stream is flushed.
struct counting_buffer : std::stringbuf {
  int flushes = 0;
  int sync() override { return ++flushes, 0; }
};

// The header line where it is wanted, and the record's line.
std::string lines_of(index_text bytes, const cmd_opts& opts, bool header_line = false) {
  record_table table(opts);
  add_record(table, opts, bytes.data(), bytes.size(), 0x4200);
  counting_buffer buffer;
  std::ostream out(&buffer);
  row_writer writer(out, opts);
  if (header_line) writer.write_header_line();
  writer.write_row(table, table.rows.at(0), 7);
  EXPECT_EQ(buffer.flushes, header_line + 1);
  return buffer.str();
}

TEST(Row, Lines) {
  check_cases("cache/row", [](const strings& c) {
    cmd_opts opts;
    opts.input_path = c[0];
    classify_path(opts);
    return lines_of(index_text(c, 1), opts);
  });
  check_cases("cache/form", [](const strings& c) {
    cmd_opts opts;
    opts.verbose = c[0] != "short";
    opts.carve_columns = c[1] == "carve";
    opts.time_format = c[2];
    return lines_of(index_text(c, 3), opts, true);
  });
}

}  // namespace
