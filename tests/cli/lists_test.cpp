// Many files: lists on standard input and walks.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <filesystem>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::record;

struct list_test : testing::Test {
  const temp_dir dir;

  // An index of one record whose URL is the file's name.
  std::string write(const std::string& name) const {
    record made = record::url(name).last_mod(sample::filetime_of(2004, 5, 6));
    return dir.write(name, sample::index_file().add(made).bytes());
  }
  // The URLs of the rows, each with a blank behind it.
  static std::string urls(const run_result& run) {
    std::string found;
    for (const std::string& row : run.rows()) found += cells(row)[9] + " ";
    return found;
  }
  run_result piped(const std::string& lines, std::vector<std::string> options = {}) const {
    options.insert(options.begin(), "-pipe");
    return run_udx(
        options,
        {.input = lines, .environment = {{"UDX_FOLDER", dir.path()}}, .folder = dir.path()});
  }
};

std::string probs(const std::string& path) {
  return message_text("probs parsing file: " + path);
}

TEST_F(list_test, RowsInTheOrderOfTheListUnderOneHeaderLine) {
  write("b");
  write("a");
  const run_result run = piped("b\n\na\r\n%UDX_FOLDER%/b");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(urls(run), "b a b ");
  EXPECT_EQ(run.results().find(header_line), 0u);
  EXPECT_EQ(run.results().rfind(header_line), 0u);
  EXPECT_EQ(run.err, wide_wipe);
  EXPECT_EQ(cells(run.rows()[2])[16], dir.path("b"));
  EXPECT_EQ(piped("").results(), "");
  EXPECT_EQ(piped("").status, 0);
}

TEST_F(list_test, OneBadFileNeverStopsTheList) {
  write("good");
  dir.write("empty", "");
  dir.write("noise", std::string(9000, '?'));
  ASSERT_EQ(mkfifo(dir.path("fifo").c_str(), 0600), 0);
  const std::string longest(5000, 'x');
  const std::string cut = longest.substr(0, 4095);
  const std::string rest = longest.substr(4095);
  const std::string lines = "none\nempty\nnoise\nfifo\nbad\xFF\n" + longest + "\ngood\n" +
                            std::string("good\0 cut\n", 10) + "good\n";
  const run_result run = piped(lines);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(urls(run).size(), 15u);  // three times "good "
  EXPECT_EQ(run.err, probs("none") + probs("empty") + probs("noise") + probs("fifo") +
                         probs("bad\xFF") + wide_wipe + probs(rest) + wide_wipe);
  for (const std::string& path : {std::string("none"), std::string("fifo"), rest}) {
    EXPECT_NE(run.out.find("prob opening " + path + " for read, aborting\n"), std::string::npos);
  }
  // A piece that fills the buffer leaves its line feed as an empty line, which is skipped.
  EXPECT_EQ(urls(piped(cut + "\ngood\n")), "good ");
}

TEST_F(list_test, FiltersSeeTheTextBeforeExpansion) {
  write("index.dat");
  write("other");
  const std::string lines = "index.dat\nother\n%UDX_FOLDER%/index.dat\n%UDX_FOLDER%\n";
  EXPECT_EQ(urls(piped(lines, {"-filter", "*.dat"})), "index.dat index.dat ");
  EXPECT_EQ(urls(piped(lines, {"-filter", "%udx_folder%"})), "");
  EXPECT_EQ(urls(piped(lines, {"-filter", "nothing", "-filter", "other"})), "other ");
  EXPECT_EQ(urls(piped(lines, {"-filter_sig", "43 6C 69"})), "index.dat other ");
  EXPECT_EQ(urls(piped(lines, {"-filter_sig", "43 6C 69|1"})), "");
  EXPECT_EQ(urls(piped("index.dat\nother\n", {"-filter_skip", "index.dat"})), "index.dat other ");
}

TEST_F(list_test, TheStartTimeNeedsAFilterBesideIt) {
  const utimbuf old = {1000000000, 1000000000};  // 2001
  ASSERT_EQ(utime(write("old").c_str(), &old), 0);
  const utimbuf recent = {1600000000, 1600000000};  // 2020
  ASSERT_EQ(utime(write("new").c_str(), &recent), 0);
  const std::vector<std::string> start = {"-cmd_start_time", "2010-1-1"};
  EXPECT_EQ(urls(piped("old\nnew\n", start)), "old new ");
  EXPECT_EQ(urls(piped("old\nnew\n", {start[0], start[1], "-filter", "*"})), "new ");
  EXPECT_EQ(urls(piped("old\nnew\n", {"-cmd_stop_time", "2010-01-01:0", "-filter", "*"})), "old ");
  EXPECT_EQ(urls(run_udx({"-enumdir", dir.path(), start[0], start[1], "-filter", "*"})), "new ");
}

TEST_F(list_test, Walks) {
  write("a/b/deep");
  write("a/index.dat");
  write("top");
  EXPECT_EQ(urls(run_udx({"-enumdir", dir.path()})), "top ");
  EXPECT_EQ(run_udx({"-enumdir", dir.path(), "-num_subdirs", "1"}).rows().size(), 2u);
  EXPECT_EQ(run_udx({"-enumdir", dir.path() + "/", "-num_subdirs", "0x2"}).rows().size(), 3u);
  EXPECT_EQ(urls(run_udx({"-enumdir", dir.path(), "-num_subdirs", "5", "-filter", "index.dat"})),
            "a/index.dat ");
  EXPECT_EQ(urls(run_udx({"-enumdir", dir.path() + "/*"})), "a/index.dat ");
  const run_setup inside = {.folder = dir.path()};
  EXPECT_EQ(urls(run_udx({"-enumdir", "./"}, inside)), "top ");
  for (const char* nothing : {".", "a", "/nowhere", "", "%UDX_NONE%"}) {
    const run_result run = run_udx({"-enumdir", nothing}, inside);
    EXPECT_EQ(run.status, 0) << nothing;
    EXPECT_EQ(run.results(), "") << nothing;
    EXPECT_EQ(run.err, wide_wipe) << nothing;
  }
  // With both, the list comes from standard input.
  EXPECT_EQ(urls(piped("top\n", {"-enumdir", dir.path(), "-num_subdirs", "9"})), "top ");

  std::filesystem::create_directory_symlink(dir.path("a"), dir.path("link"));
  dir.write("\xFF", "x");  // an empty path, skipped
  const run_result run = run_udx({"-enumdir", dir.path()});
  EXPECT_EQ(urls(run), "top ");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out.find("\xFF"), std::string::npos);
}

TEST_F(list_test, DiagnosticsHoldTheUnexpandedPaths) {
  const std::string diags = dir.path("diags");
  piped("%UDX_FOLDER%/x\n", {"-diags", diags});
  EXPECT_NE(read_file(diags).find("\n->%UDX_FOLDER%/x\n->"), std::string::npos);
}

TEST_F(list_test, ALargeFileKeepsTheKindBeforeIt) {
  const std::string large = write("large");
  std::filesystem::resize_file(large, 0x1000001);
  write("MSHist/index.dat");
  write("other");
  const auto first_time = [&](const std::string& lines) {
    return cells(piped(lines, {"-quiet"}).rows().back())[1];
  };
  EXPECT_EQ(first_time("other\nlarge\n"), "00:00:00.000 UTC");
  EXPECT_EQ(first_time("MSHist/index.dat\nlarge\n"), "00:00:00.000 local");
  EXPECT_EQ(first_time("MSHist/index.dat\nother\nlarge\n"), "00:00:00.000 UTC");
}

}  // namespace
