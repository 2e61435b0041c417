// From a record to its row, and from the row to its line.
#include <span>
#include <sstream>
#include <string_view>

#include "cache/cache_row.h"
#include "cache/index_dat.h"
#include "cache/record_scan.h"
#include "cache/record_signature.h"
#include "cache/record_table.h"
#include "cache/row_writer.h"
#include "opts/cmd_opts.h"
#include "tests/support/check_cases.h"
#include "tests/support/shown.h"
#include "text/line_sink.h"
#include "tools/index_builder.h"
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

CASES(cache, row) {
  cmd_opts opts;
  opts.input_path = c["path"];
  classify_path(opts);
  return lines_of(index_text_builder(c.inputs), opts);
}

CASES(cache, form) {
  cmd_opts opts;
  opts.verbose = c["cells"] == "full";
  opts.carve_columns = c["columns"] == "carve";
  opts.time_format = c["time"];
  return in_words(lines_of(index_text_builder(c.inputs), opts, true));
}

// Lends so many bytes, and sees what is written behind them.
struct tight_sink : zk::line_sink {
  explicit tight_sink(size_t size) : bytes(size + 9, '|') {}
  std::span<char> space() override { return {bytes.data(), bytes.size() - 9}; }
  void advance(size_t count) override { line = "in place: " + bytes.substr(0, count); }
  void take(std::string_view text) override { line = text; }

  std::string bytes;
  std::string line;
};

TEST(Row, IsComposedInPlaceOnlyWhereAllOfItFits) {
  struct cache_row row;
  row.signature = url_signature;
  row.last_mod = row.access = sample::filetime_of(2021, 3, 4, 5, 6, 7);
  row.expires = 0xFFFFFFFF;  // no time
  row.url = "http://u/?a,b";
  row.file_size = row.count = 0xFFFFFFFF;
  for (const char* mask : {"hh:mm:ss", "hh:mm:ss.xxx", "hh:mm:ss.xxxxxxxxx", "ss:xxxxx"}) {
    for (const char* separator : {"", ",", "<separator>"}) {
      cmd_opts opts;
      opts.time_format = mask;
      opts.csv_separator = separator;
      std::string line;
      for (size_t size = 400; size > 0; --size) {
        row.local_time = size % 2 == 0;
        tight_sink sink(size);
        row_writer(sink, opts, {"directory"}).write_row(row, 1);
        ASSERT_EQ(sink.bytes.substr(size), "|||||||||") << size;
        const bool in_place = sink.line.starts_with("in place: ");
        ASSERT_EQ(in_place, sink.line.size() - 10 * in_place <= size) << size;
      }
    }
  }
}

}  // namespace
