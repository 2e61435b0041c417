// Many files: lists on standard input and walks.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using words = std::vector<std::string>;

std::string probs(const std::string& path) {
  return message_text("probs parsing file: " + path);
}

struct list_test : testing::Test {
  const temp_dir dir;

  // An index of one record whose URL is the file's name.
  std::string write(const std::string& name, time_t modified = 0) const {
    sample::record made = sample::record::url(name).last_mod(sample::filetime_of(2004, 5, 6));
    const std::string path = dir.write(name, sample::index_file().add(made).bytes());
    const utimbuf times = {modified, modified};
    if (modified != 0) utime(path.c_str(), &times);
    return path;
  }
  // The URLs of the rows, each with a blank behind it.
  static std::string urls(const run_result& run) {
    std::string found;
    for (const std::string& row : run.rows()) found += cells(row)[9] + " ";
    return found;
  }
  run_result piped(const std::string& lines, words options = {}) const {
    options.insert(options.begin(), "-pipe");
    return run_udx(
        options,
        {.input = lines, .environment = {{"UDX_FOLDER", dir.path()}}, .folder = dir.path()});
  }
};

// clang-format off

TEST_F(list_test, RowsInTheOrderOfTheListUnderOneHeaderLine) {
  write("b"), write("a");
  const run_result run = piped("b\n\na\r\n%UDX_FOLDER%/b");
  EXPECT_EQ(urls(run), "b a b ");
  EXPECT_TRUE(run.status == 0 && run.err == wide_wipe && run.results().rfind(header_line) == 0);
  EXPECT_EQ(cells(run.rows()[2])[16], dir.path("b"));
  EXPECT_EQ(piped("").results(), "");
}

TEST_F(list_test, OneBadFileNeverStopsTheList) {
  write("good");
  dir.write("empty", ""), dir.write("noise", std::string(9000, '?'));
  ASSERT_EQ(mkfifo(dir.path("fifo").c_str(), 0600), 0);
  const std::string longest(5000, 'x'), rest = longest.substr(4095);
  const run_result run = piped("none\nempty\nnoise\nfifo\nbad\xFF\n" + longest + "\ngood\n" + std::string("good\0 cut\n", 10) + "good\n");
  EXPECT_TRUE(run.status == 0 && urls(run) == "good good good ");
  EXPECT_EQ(run.err, probs("none") + probs("empty") + probs("noise") + probs("fifo") + probs("bad\xFF") +
                         wide_wipe + probs(rest) + wide_wipe);  // the first piece is too long for a message
  for (const std::string& path : {std::string("none"), std::string("fifo"), rest}) {
    EXPECT_NE(run.out.find("prob opening " + path + " for read, aborting\n"), std::string::npos);
  }
  // A piece that fills the buffer leaves its line feed as an empty line, which is skipped.
  EXPECT_EQ(urls(piped(longest.substr(0, 4095) + "\ngood\n")), "good ");
}

TEST_F(list_test, Filters) {
  write("index.dat", 1000000000), write("other", 1600000000);  // of 2001 and of 2020
  const std::string both = "index.dat\nother\n", lines = both + "%UDX_FOLDER%/index.dat\n%UDX_FOLDER%\n";
  struct filter_case { words options; std::string input, urls; };
  for (const auto& c : std::vector<filter_case>{
           {{"-filter", "*.dat"}, lines, "index.dat index.dat "}, {{"-filter", "%udx_folder%"}, lines, ""},
           {{"-filter", "nothing", "-filter", "other"}, lines, "other "}, {{"-filter_sig", "43 6C 69"}, lines, "index.dat other "},
           {{"-filter_sig", "43 6C 69|1"}, lines, ""}, {{"-filter_skip", "index.dat"}, both, "index.dat other "},
           {{"-cmd_start_time", "2010-1-1"}, both, "index.dat other "},  // needs a filter beside it
           {{"-cmd_start_time", "2010-1-1", "-filter", "*"}, both, "other "},
           {{"-cmd_stop_time", "2010-01-01:0", "-filter", "*"}, both, "index.dat "},
           {{"-enumdir", dir.path(), "-num_subdirs", "9"}, "other\n", "other "}}) {  // the list wins
    EXPECT_EQ(urls(piped(c.input, c.options)), c.urls) << c.options.back();
  }
  EXPECT_EQ(urls(run_udx({"-enumdir", dir.path(), "-cmd_start_time", "2010-1-1", "-filter", "*"})), "other ");
  piped("%UDX_FOLDER%/x\n", {"-diags", dir.path("diags")});
  EXPECT_NE(read_file(dir.path("diags")).find("\n->%UDX_FOLDER%/x\n->"), std::string::npos);
}

TEST_F(list_test, Walks) {
  write("a/b/deep"), write("a/index.dat"), write("top");
  std::filesystem::create_directory_symlink(dir.path("a"), dir.path("link"));
  dir.write("\xFF", "x");  // an empty path, skipped
  const run_setup inside = {.folder = dir.path()};
  struct walk_case { words arguments; size_t rows; };
  for (const auto& c : std::vector<walk_case>{{{dir.path()}, 1}, {{dir.path(), "-num_subdirs", "1"}, 2},
           {{dir.path() + "/", "-num_subdirs", "0x2"}, 3}, {{dir.path(), "-num_subdirs", "5", "-filter", "index.dat"}, 1},
           {{dir.path() + "/*"}, 1}, {{"./"}, 1}, {{"."}, 0}, {{"a"}, 0}, {{"/nowhere"}, 0}, {{""}, 0}}) {
    words arguments = c.arguments;
    arguments.insert(arguments.begin(), "-enumdir");
    const run_result run = run_udx(arguments, inside);
    EXPECT_EQ(run.rows().size(), c.rows) << c.arguments[0];
    EXPECT_TRUE(run.status == 0 && run.out.find("\xFF") == std::string::npos);
    EXPECT_TRUE(c.rows != 0 || (run.results().empty() && run.err == wide_wipe)) << c.arguments[0];
  }
}

TEST_F(list_test, ALargeFileKeepsTheKindBeforeIt) {
  std::filesystem::resize_file(write("large"), 0x1000001);
  write("MSHist/index.dat"), write("other");
  struct kind_case { const char *lines, *time; };
  for (const auto& c : std::vector<kind_case>{{"other\nlarge\n", "00:00:00.000 UTC"},
           {"MSHist/index.dat\nlarge\n", "00:00:00.000 local"}, {"MSHist/index.dat\nother\nlarge\n", "00:00:00.000 UTC"}}) {
    EXPECT_EQ(cells(piped(c.lines, {"-quiet"}).rows().back())[1], c.time) << c.lines;
  }
}

}  // namespace
