// One file, from the command line to the last row.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <random>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"
#include "tools/sample_records.h"

namespace {

std::string probs(const std::string& path) {
  return message_text("probs parsing file: " + path);
}

TEST(OneFile, RowsInOffsetOrderBelowOneHeaderLine) {
  const temp_dir dir;
  const std::string path = dir.write("index.dat", sample::small_index().bytes());
  const run_result run = run_udx({"-f", path});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, wide_wipe);
  EXPECT_TRUE(run.results().starts_with(header_line));
  const auto rows = run.rows();
  ASSERT_EQ(rows.size(), 9u);
  for (const std::string& row : rows) EXPECT_EQ(cells(row).size(), 17u) << row;
  const std::string padded("OLD1\0\0\0\0", 8);
  EXPECT_EQ(rows[5], ",,,,,,,,REDR,http://go.example.com/fwlink/?LinkId=488207,,,0,,0,," + path);
  EXPECT_EQ(rows[6],
            "2008-02-29,23:59:58.000 UTC,2008-03-01,12:30:10.000 UTC,,,,,LEAK,,,draft[2].htm,5120,"
            "C5TZ07WB,0,," +
                path);
  EXPECT_EQ(rows[7],
            "2001-01-01,00:00:01.000 UTC,2009-07-21,18:04:05.000 UTC,2000-06-14,08:00:00.000 UTC,"
            "2009-07-21,18:04:06.000 UTC,URL ,http://www.example.com/search?q=a;b&x=1,examiner,"
            "search[1].htm,0," +
                padded + ",12,HTTP/1.1 200 OK  Set-Cookie: a=1; b=2," + path);
}

TEST(OneFile, RunDetailsStandAboveTheResults) {
  const temp_dir dir;
  const std::string path = dir.write("a b.dat", sample::small_index().bytes());
  const run_result run = run_udx({"-f", path});
  const auto lines = cells(run.out, '\n');
  EXPECT_TRUE(lines[0].starts_with("udx - limited ver: 0.93;")) << lines[0];
  EXPECT_EQ(lines[1].find("run date: "), 0u);
  EXPECT_NE(lines[1].find("; host: "), std::string::npos);
  EXPECT_NE(lines[1].find("; system: Linux;"), std::string::npos);
  EXPECT_EQ(lines[2], "\"command line: " UDX_PROGRAM " -f '" + path + "'\"");
  EXPECT_EQ(lines[3], "");
}

TEST(OneFile, WhatCannotBeParsed) {
  const temp_dir dir;
  const std::string fifo = dir.path("fifo");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::string noise(5000, ' ');
  std::mt19937 random(1);
  for (char& c : noise) c = static_cast<char>(random());
  const auto not_opened = [](const std::string& path) {
    return "prob opening " + path + " for read, aborting\n";
  };
  const struct {
    std::string path, results;
  } cases[] = {
      {dir.path("none"), not_opened(dir.path("none"))},
      {fifo, not_opened(fifo)},
      {"bad\xFF", not_opened("bad\xFF")},
      {dir.write("empty", ""), ""},
      {"/proc/self/cmdline", ""},
      {"/proc/self/mem", ""},  // opens, and its first byte can't be read
      {dir.write("one", "x"), header_line},
      {dir.write("noise", noise), header_line},
      {dir.write("header", "Client UrlCache"), header_line},
      {"", header_line},
  };
  for (const auto& c : cases) {
    const run_result run = run_udx({"-f", c.path});
    EXPECT_EQ(run.status, 255) << c.path;
    EXPECT_EQ(run.err, probs(c.path) + wide_wipe) << c.path;
    EXPECT_EQ(run.results(), c.results) << c.path;
  }
  const run_result folder = run_udx({"-f", dir.path()});  // its size is the file system's affair
  EXPECT_TRUE(folder.status == 0 || folder.status == 255);
  EXPECT_TRUE(folder.results().empty() || folder.results() == header_line);
}

TEST(OneFile, InputStaysAsItWas) {
  const temp_dir dir;
  const std::string path = dir.write("index.dat", sample::small_index().bytes());
  const std::string before = read_file(path);
  ASSERT_EQ(chmod(path.c_str(), 0400), 0);
  EXPECT_EQ(run_udx({"-f", path}).rows().size(), 9u);
  EXPECT_EQ(read_file(path), before);
}

TEST(OneFile, TheSampleInTheRepositoryIsWhatTheMakerWrites) {
  EXPECT_EQ(read_file(UDX_SOURCE "/examples/index.dat"), [] {
    const auto bytes = sample::small_index().bytes();
    return std::string(bytes.begin(), bytes.end());
  }());
}

// Real indexes, run where a folder of them is named when the build is configured.
TEST(RealIndexes, EveryRecordOnTheGrid) {
  const char* corpus = std::getenv("UDX_CORPUS");
  ASSERT_TRUE(corpus);
  const struct {
    const char* name;
    size_t url, redr;
  } cases[] = {{"/content.ie5/index.dat", 21, 14}, {"/history.ie5/index.dat", 17, 0}};
  for (const auto& c : cases) {
    size_t url = 0, redr = 0;
    for (const std::string& row : run_udx({"-f", corpus + std::string(c.name)}).rows()) {
      const auto found = cells(row);
      EXPECT_EQ(found.size(), 17u);
      url += found[8] == "URL ";
      redr += found[8] == "REDR";
    }
    EXPECT_EQ(url, c.url) << c.name;
    EXPECT_EQ(redr, c.redr) << c.name;
  }
}

}  // namespace
