// One file, from the command line to the last row.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <random>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/sample_records.h"

namespace {

std::string probs(const std::string& path) {
  return message_text("probs parsing file: " + path);
}

// clang-format off

TEST(OneFile, RunDetailsHeaderLineAndRows) {
  const temp_dir dir;
  const auto bytes = sample::small_index().bytes();
  const std::string before(bytes.begin(), bytes.end()), path = dir.write("a b.dat", before);
  ASSERT_EQ(chmod(path.c_str(), 0400), 0);
  const run_result run = run_udx({"-f", path});
  const auto lines = cells(run.out, '\n'), rows = run.rows();
  EXPECT_TRUE(lines[0].starts_with("udx - limited ver: 0.93;")) << lines[0];
  EXPECT_TRUE(lines[1].starts_with("run date: ") && lines[1].find("; host: ") < lines[1].find("; system: Linux;"));
  EXPECT_EQ(lines[2] + lines[3], "\"command line: " UDX_PROGRAM " -f '" + path + "'\"");
  EXPECT_TRUE(run.results().starts_with(header_line));
  EXPECT_TRUE(run.status == 0 && run.err == wide_wipe && lines.size() == 15);  // the last one empty
  ASSERT_EQ(rows.size(), 9u);
  EXPECT_EQ(rows[5], ",,,,,,,,REDR,http://go.example.com/fwlink/?LinkId=488207,,,0,,0,," + path);
  EXPECT_EQ(rows[6], "2008-02-29,23:59:58.000 UTC,2008-03-01,12:30:10.000 UTC,,,,,LEAK,,,draft[2].htm,5120,C5TZ07WB,0,," + path);
  EXPECT_EQ(rows[7], "2001-01-01,00:00:01.000 UTC,2009-07-21,18:04:05.000 UTC,2000-06-14,08:00:00.000 UTC,"
                     "2009-07-21,18:04:06.000 UTC,URL ,http://www.example.com/search?q=a;b&x=1,examiner,search[1].htm,0," +
                         std::string("OLD1\0\0\0\0", 8) + ",12,HTTP/1.1 200 OK  Set-Cookie: a=1; b=2," + path);
  EXPECT_EQ(read_file(path), before);  // the input stays as it was
  EXPECT_EQ(read_file(UDX_SOURCE "/examples/index.dat"), before);  // as the sample maker writes it
}

TEST(OneFile, WhatCannotBeParsed) {
  const temp_dir dir;
  const std::string fifo = dir.path("fifo"), none = dir.path("none");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::string noise(5000, ' ');
  std::mt19937 random(1);
  for (char& c : noise) c = static_cast<char>(random());
  const auto not_opened = [](const std::string& path) { return "prob opening " + path + " for read, aborting\n"; };
  struct bad_case { std::string path, results; };
  for (const auto& c : std::vector<bad_case>{
           {none, not_opened(none)}, {fifo, not_opened(fifo)}, {"bad\xFF", not_opened("bad\xFF")},
           {dir.write("empty", ""), ""}, {"/proc/self/cmdline", ""}, {"/proc/self/mem", ""},  // can't be read
           {dir.write("one", "x"), header_line}, {dir.write("noise", noise), header_line},
           {dir.write("header", "Client UrlCache"), header_line}, {"", header_line}}) {
    const run_result run = run_udx({"-f", c.path});
    EXPECT_EQ(run.status, 255) << c.path;
    EXPECT_EQ(run.err, probs(c.path) + wide_wipe) << c.path;
    EXPECT_EQ(run.results(), c.results) << c.path;
  }
  const run_result folder = run_udx({"-f", dir.path()});  // its size is the file system's affair
  EXPECT_TRUE(folder.status == 0 ? folder.results() == header_line : folder.status == 255 && folder.results().empty());
}

// Real indexes, run where a folder of them is named when the build is configured.
TEST(RealIndexes, EveryRecordOnTheGrid) {
  const std::string corpus = std::getenv("UDX_CORPUS") ? std::getenv("UDX_CORPUS") : "";
  struct index_case { const char* name; size_t url, redr; };
  for (const auto& c : std::vector<index_case>{{"/content.ie5/index.dat", 21, 14}, {"/history.ie5/index.dat", 17, 0}}) {
    size_t url = 0, redr = 0;
    for (const std::string& row : run_udx({"-f", corpus + c.name}).rows()) {
      url += cells(row)[8] == "URL ";
      redr += cells(row)[8] == "REDR";
    }
    EXPECT_EQ(url * 100 + redr, c.url * 100 + c.redr) << c.name;
  }
}

}  // namespace
