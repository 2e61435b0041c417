// From a record to its row, and from the row to its line.
#include <gtest/gtest.h>

#include <sstream>

#include "cache/index_dat.h"
#include "cache/row_writer.h"
#include "tests/support/case_file.h"
#include "tools/index_builder.h"

namespace {

using sample::dos_of;
using sample::filetime_of;
using sample::record;

constexpr uint64_t unset = 0xDEADBEEFDEADBEEF;

cmd_opts options_for(const std::string& path) {
  cmd_opts opts;
  opts.input_path = path;
  classify_path(opts);
  return opts;
}

std::string line_of(const record& made, const cmd_opts& opts) {
  record_table table(opts);
  sample::byte_vector bytes = made.bytes();
  add_record(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), 0x4200);
  std::ostringstream out;
  row_writer writer(out, opts);
  for (const cache_row& row : table.rows) writer.write_row(table, row, 7);
  return out.str();
}

TEST(Row, UnsetColumns) {
  EXPECT_EQ(line_of(record::redr("http://b/"), options_for("/MSHist/i")),
            ",,,,,,,,REDR,http://b/,,,0,,0,,/MSHist/i\n");
  const std::string empty = line_of(record::url("u"), options_for("p"));
  EXPECT_EQ(empty, ",,,,,,,,URL ,u,,,0,,0,u,p\n");
  EXPECT_EQ(line_of(record::url("u").file_size(0xFFFFFFFF).directory(2), options_for("p")),
            ",,,,,,,,URL ,u,,,4294967295,,0,u,p\n");
  EXPECT_EQ(line_of(record::url("u")
                        .last_mod(unset)
                        .access(unset)
                        .expires(0xBEEF)
                        .last_sync(0xDEADBEEF)
                        .count(0xDEADBEEF),
                    options_for("p")),
            empty);
  EXPECT_EQ(line_of(record::url("u").last_mod(1).expires(0xBEEF0000).last_sync(dos_of(2004, 13, 1)),
                    options_for("p")),
            empty);  // no times: an impossible one leaves no label either
  const uint64_t half =
      (filetime_of(2004, 1, 1) & ~0xFFFFFFFFULL) | 0xDEADBEEF;  // half a fill pattern
  EXPECT_TRUE(
      line_of(record::url("u").last_mod(half), options_for("p")).starts_with("2004-01-01,00:0"));
  cmd_opts no_time = options_for("p");
  no_time.time_format = "--------";
  EXPECT_EQ(line_of(record::url("u").access(filetime_of(2004, 1, 1)), no_time),
            ",,2004-01-01,,,,,,URL ,u,,,0,,0,u,p\n");
}

TEST(Row, ALeaksAccessTime) {
  const uint32_t dos = dos_of(2004, 5, 6, 7, 8, 10);
  struct access_case {
    record made;
    const char* access;
  };
  for (const auto& c : std::vector<access_case>{
           {record::leak().leak_access(dos), "2004-05-06,07:08:10.000 UTC"},
           {record::leak().leak_access(dos).access(unset), "2004-05-06,07:08:10.000 UTC"},
           {record::leak().leak_access(dos).access(filetime_of(2003, 1, 1)),
            "2003-01-01,00:00:00.000 UTC"},
           {record::leak().leak_access(dos).access(1), ","},
           {record::leak().leak_access(0xBEEF), ","},
           {record::leak().leak_access(0x12340000), ","},
           {record::leak().leak_access(0x1234BEEF), ","},
           {record::url("u").leak_access(dos), ","}}) {
    const auto found = cells(line_of(c.made, options_for("p")));
    EXPECT_EQ(found[2] + "," + found[3], c.access);
  }
}

TEST(Row, LocalLabel) {
  check_cases("cache/label", [](const strings& c) {
    const uint64_t day = filetime_of(2004, 1, 1);
    const uint32_t dos = dos_of(2004, 1, 1);
    const record made = record::url(c[1]).last_mod(day).access(day).expires(dos).last_sync(dos);
    const strings found = cells(line_of(made, options_for(c[0])));
    for (const size_t other : {3u, 5u, 7u}) EXPECT_EQ(found[other], "00:00:00.000 UTC");
    return found[1].substr(13);
  });
}

// Counts how often its stream is flushed.
struct counting_buffer : std::stringbuf {
  int flushes = 0;
  int sync() override { return ++flushes, 0; }
};

TEST(Row, FormsOfTheLine) {
  cmd_opts opts = options_for("p");
  opts.csv_separator = " | ";
  counting_buffer buffer;
  std::ostream out(&buffer);
  row_writer(out, opts).write_header_line();
  EXPECT_TRUE(buffer.str().starts_with("last mod date | last mod time | "));
  EXPECT_EQ(buffer.flushes, 1);

  opts = options_for("p");
  opts.verbose = false;
  EXPECT_EQ(line_of(record::url("u").filename("f").file_size(3), opts), ",,,,,,,,URL ,u,,,,,,,p\n");
  opts.carve_columns = true;
  EXPECT_EQ(line_of(record::redr("r"), opts), "7,0x00004200,,,,,,,,,REDR,r,,,,,,,p\n");
  buffer.str("");
  row_writer(out, opts).write_header_line();
  EXPECT_TRUE(buffer.str().starts_with("note,offset,last mod date,"));
}

TEST(Row, SourceName) {
  cmd_opts opts;
  EXPECT_EQ(source_name(opts), "");
  opts.vmdk_paths = {L"/a.vmdk", L"\xE4.vmdk"};
  EXPECT_EQ(source_name(opts), "/a.vmdk; \xC3\xA4.vmdk");
  opts.partition_path = "c";
  EXPECT_EQ(source_name(opts), "c:\\");
}

}  // namespace
