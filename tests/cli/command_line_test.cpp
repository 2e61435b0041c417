// The whole command line, from the arguments to streams, statuses and files.
#include <gtest/gtest.h>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::record;
using words = std::vector<std::string>;

// A folder with one index of one URL record.
struct one_index : testing::Test {
  const temp_dir dir;
  const std::string path = write("index.dat", 1);
  const std::string row = row_of(",", "2021-03-04", "05:06:07.000");

  std::string write(const std::string& name, int records) const {
    sample::index_file index;
    index.directories({"DIR1"});
    record made = record::url("http://a/").filename("f.htm");
    for (int i = 0; i < records; ++i)
      index.add(made.last_mod(sample::filetime_of(2021, 3, 4, 5, 6, 7)));
    return dir.write(name, index.bytes());
  }
  std::string row_of(const std::string& separator, const std::string& date,
                     const std::string& time) const {
    std::string line = date + separator + time + " UTC";
    for (const std::string& cell :
         words{"", "", "", "", "", "", "URL ", "http://a/", "", "f.htm", "0",
               std::string("DIR1\0\0\0\0", 8), "0", "http://a/", path}) {
      line += separator + cell;
    }
    return line + "\n";
  }
  run_result run(words more, const run_setup& setup = {}) const {
    more.insert(more.begin(), {"-f", path});
    return run_udx(more, setup);
  }
};

const std::string help_text =
    "udx reads the index.dat files of Internet Explorer\n"
    "and writes one row for each URL, LEAK and REDR record\n"
    "-----------------------------------------------------------------------------\n\n"
    "udx - limited ver: 0.93; the udx developers\n\n"
    "Usage:\n\n"
    "  udx -f <file>\n"
    "  udx -partition <drive letter>          = Partition scan\n"
    "  udx -vmdk \"<file1> | <file2> | ...\"    = VMWare disk scan\n"
    "    find <starting path> -name *.dat -type f | <path of udx> -pipe\n"
    "  udx -enumdir <folder> -num_subdirs <#> [options]\n"
    "\n Basic options\n"
    "  -pipe                     = pipe files into app for processing\n"
    "  -dateformat mm/dd/yyyy    = \"yyyy-mm-dd\" is the default\n"
    "  -timeformat hh:mm:ss      = \"hh:mm:ss.xxx\" is the default\n"
    "  -csv_separator \"|\"        = use a pipe char for separator\n"
    "  -locale                   = use user acct locale info for date formatting\n"
    "  -filter <*partial*|*.ext> = filters stdin data from -pipe option\n"
    "\n";

// clang-format off

TEST(Help, ByWordAndForWantOfAMode) {
  for (const words& arguments : {words{}, {"-h"}, {"-HELP"}, {"/?"}, {"-f", "x", "--help"}}) {
    const run_result run = run_udx(arguments);
    EXPECT_TRUE(run.status == 0 && run.out.empty());
    EXPECT_EQ(run.err, help_text);
  }
  // Without a mode it follows the run's details, and the end of the run wipes the line behind it.
  for (const words& arguments : {words{"-f"}, {"-unknown"}, {"x.dat"}, {"-enumdir"}, {"-vmdk"}}) {
    const run_result run = run_udx(arguments);
    EXPECT_TRUE(run.status == 0 && run.results().empty() && run.out.starts_with("udx - limited")) << arguments[0];
    EXPECT_EQ(run.err, help_text + wide_wipe) << arguments[0];
  }
}

TEST_F(one_index, OptionsInAnyPlaceAndCase) {
  for (const words& arguments : {words{"-F", path}, {"-CSV", "-unknown", "-f", path}, {"-f", path, "-f", "other"},
           {"-f", path, "-pipe"}, {"-f", path, "-enumdir", "/nowhere"}, {"-f", "%UDX_FOLDER%/index.dat"},
           {"-f", path, "-cmd_start_time", "2030-1-1"}, {"-f", path, "-offset", "12", "-l2", "-csv_separator"}}) {
    const run_result run = run_udx(arguments, {.environment = {{"UDX_FOLDER", dir.path()}}});
    EXPECT_TRUE(run.status == 0 && run.err == wide_wipe) << arguments[0];
    EXPECT_EQ(run.results(), header_line + row) << arguments[0];
  }
}

TEST_F(one_index, FormsOfTheRow) {
  const std::string date = "2021-03-04", time = "05:06:07.000";
  struct form_case { words options; std::string row; bool header = true; };
  for (const auto& c : std::vector<form_case>{
           {{"-csv_separator", "tab"}, row_of("\t", date, time)}, {{"-csv_separator", "|"}, row_of("|", date, time)},
           {{"-csv_separator", " | ", "-no_whitespace"}, row_of("|", date, time)}, {{"-bodyfile", "-csv"}, row_of("|", date, time)},
           {{"-multiline"}, row_of("", date, time)}, {{"-xml"}, row_of("", date, time), false},
           {{"-dateformat", "mm/dd/yyyy", "-timeformat", "hh:mm:ss"}, row_of(",", "03/04/2021", "05:06:07")},
           {{"-dateformat", "MMM dd yy"}, row}, {{"-timeformat", "hh:mm:ss.xxxxxx"}, row_of(",", date, "05:06:07.000000")}}) {
    const run_result result = run(c.options);
    const std::string text = result.results();
    EXPECT_TRUE(text.ends_with(c.row)) << text;
    const std::string above = text.substr(0, text.size() - c.row.size());
    EXPECT_EQ(above.starts_with("last mod date"), c.header) << above;
    EXPECT_EQ(std::count(above.begin(), above.end(), '\n'), c.header);
  }
}

TEST_F(one_index, FailuresBeforeAnyRow) {
  const std::string kept = dir.write("kept", "x"), gone = dir.write("gone", "x");
  struct failure_case { words options; std::string err; };
  for (const auto& c : std::vector<failure_case>{
           {{"-sqlite", "db", "-out", kept}, "This option is not offered in this build\n"},
           {{"-out", "/nowhere/x"}, "prob opening file /nowhere/x for output, aborting\n"},
           {{"-out", gone, "-profile", "-cmd_start_time", "never"}, ""},
           {{"-partition", "c"}, message_text("re-run [-partition] option w/ admin privileges") + wide_wipe}}) {
    const run_result result = run(c.options);
    EXPECT_TRUE(result.status == 255 && result.out.starts_with("udx - limited") && result.results().empty()) << c.options[0];
    EXPECT_EQ(result.err, c.err) << c.options[0];
  }
  EXPECT_TRUE(read_file(kept) == "x" && !std::filesystem::exists(gone));
  const run_result ignored = run({"-cmd_stop_time", "2020-1-1", "-dateformat", "short"});
  EXPECT_EQ(ignored.err, "invalid stop time, ignoring\ninvalid short, using default format\n" + wide_wipe);
}

TEST_F(one_index, ResultsFile) {
  const std::string out = dir.write("results", "old contents");
  const run_result result = run({"-out", out, "-append"});
  EXPECT_TRUE(result.status == 0 && result.out.empty());
  EXPECT_TRUE(read_file(out).starts_with("udx - limited") && read_file(out).ends_with("\"\n\n" + header_line + row));
  EXPECT_EQ(run({"-outfile", dir.path("%UDX_NAME%"), "-quiet"}, {.environment = {{"UDX_NAME", "n"}}}).err, "");
  EXPECT_TRUE(read_file(dir.path("n")).ends_with(row));
  const std::string self = write("self.dat", 1);  // gone before it is read
  EXPECT_EQ(run_udx({"-f", self, "-out", self}).status, 255);
  EXPECT_EQ(read_file(self).find("http://a/"), std::string::npos);
  // A disk that is full changes neither the status nor the messages.
  const std::string big = write("big.dat", 5000);
  const run_result full = run_udx({"-f", big, "-out", out}, {.shell = "trap '' XFSZ; ulimit -f 1;"});
  EXPECT_TRUE(full.status == 0 && full.err == wide_wipe && read_file(out).size() <= 1024);
}

TEST_F(one_index, RunDetailsFollowTheOptions) {
  const std::string dated = run({"-dateformat", "yyyy-mm-dd"}).out, piped = run({"-PIPE", "-utf8_bom"}).out;
  EXPECT_EQ(dated.substr(dated.find("run date: ") + 14, 1), "-");
  EXPECT_TRUE(piped.starts_with("\xEF\xBB\xBFudx - limited"));
  EXPECT_NE(piped.find("\"command line: <filelist> ... | "), std::string::npos);
}

TEST_F(one_index, LocaleLineGoesToStandardOutput) {
  const std::string out = dir.path("results");
  EXPECT_EQ(run({"-locale", "-out", out}, {.environment = {{"LC_ALL", "C"}}}).out, "Using locale date format: C\n");
  EXPECT_NE(read_file(out).find("\n03/04/21,05:06:07.000 UTC,"), std::string::npos);
  EXPECT_EQ(run({"-locale", "-out", out, "-dateformat", "mm-dd-yy"},
                {.environment = {{"LC_ALL", "xx"}, {"LC_TIME", "yy"}, {"LANG", "zz"}}}).out, "Using locale en_US date format\n");
  EXPECT_TRUE(read_file(out).ends_with(header_line + row));
}

TEST_F(one_index, ElapsedTimeComesLast) {
  const std::string diags = dir.path("diags"), err = run({"-profile", "-diags", diags, "-quiet"}).err;
  EXPECT_TRUE(err == "->0 secs\n" || err == "->1 secs\n") << err;
  const std::string text = read_file(diags);
  EXPECT_TRUE(text.starts_with("->" UDX_PROGRAM " -f ") && text.ends_with(" secs") && text.find("\n->") != std::string::npos) << text;
  EXPECT_TRUE(run({"-profile"}).err.starts_with(wide_wipe + "->"));
}

}  // namespace
