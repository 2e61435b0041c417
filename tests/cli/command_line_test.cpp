// The whole command line, from the arguments to streams, statuses and files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::filetime_of;
using sample::record;

// A folder with one index of one URL record.
struct one_index : testing::Test {
  const temp_dir dir;
  const std::string path = write("index.dat");
  const std::string row = row_of(path);

  std::string write(const std::string& name) const {
    record made = record::url("http://a/").filename("f.htm").directory(0);
    made.last_mod(filetime_of(2021, 3, 4, 5, 6, 7));
    return dir.write(name, sample::index_file().directories({"DIR1"}).add(made).bytes());
  }
  static std::string row_of(const std::string& path) {
    return "2021-03-04,05:06:07.000 UTC,,,,,,,URL ,http://a/,,f.htm,0," +
           std::string("DIR1\0\0\0\0", 8) + ",0,http://a/," + path + "\n";
  }
  run_result run(std::vector<std::string> more, const run_setup& setup = {}) const {
    more.insert(more.begin(), {"-f", path});
    return run_udx(more, setup);
  }
};

std::string help_text() {
  return "udx reads the index.dat files of Internet Explorer\n"
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
}

TEST(Help, ByWordAndForWantOfAMode) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {"-h"}, {"-HELP"}, {"/?"}, {"-f", "x", "--help"}}) {
    const run_result run = run_udx(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, help_text());
  }
  // Without a mode it follows the run's details, and the end of the run wipes the line behind it.
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-f"}, {"-unknown"}, {"x.dat"}, {"-enumdir"}, {"-vmdk"}}) {
    const run_result run = run_udx(arguments);
    EXPECT_EQ(run.status, 0) << arguments[0];
    EXPECT_EQ(run.results(), "") << arguments[0];
    EXPECT_TRUE(run.out.starts_with("udx - limited"));
    EXPECT_EQ(run.err, help_text() + wide_wipe) << arguments[0];
  }
}

TEST_F(one_index, OptionsInAnyPlaceAndCase) {
  const std::string plain = header_line + row;
  const struct {
    std::vector<std::string> arguments;
    std::string results;
  } cases[] = {
      {{"-F", path}, plain},
      {{"-CSV", "-unknown", "-f", path}, plain},
      {{"-f", path, "-f", "other"}, plain},
      {{"-f", path, "-pipe"}, plain},
      {{"-f", path, "-enumdir", "/nowhere"}, plain},
      {{"-f", "%UDX_FOLDER%/index.dat"}, plain},
      {{"-f", path, "-cmd_start_time", "2030-1-1"}, plain},
      {{"-f", path, "-offset", "12", "-l2", "-csv_separator"}, plain},
  };
  for (const auto& c : cases) {
    const run_result run = run_udx(c.arguments, {.environment = {{"UDX_FOLDER", dir.path()}}});
    EXPECT_EQ(run.status, 0) << c.arguments[0];
    EXPECT_EQ(run.results(), c.results) << c.arguments[0];
    EXPECT_EQ(run.err, wide_wipe) << c.arguments[0];
  }
}

TEST_F(one_index, FormsOfTheRow) {
  const auto changed = [&](const std::string& separator, const std::string& date,
                           const std::string& time) {
    std::string text = row;
    std::replace(text.begin(), text.end(), ',', '\1');
    for (size_t at; (at = text.find('\1')) != std::string::npos;) text.replace(at, 1, separator);
    text.replace(0, 10, date);
    return text.replace(date.size() + separator.size(), 12, time);
  };
  const std::string date = "2021-03-04";
  const std::string time = "05:06:07.000";
  const struct {
    std::vector<std::string> options;
    std::string row;
    bool header = true;
  } cases[] = {
      {{"-csv_separator", "tab"}, changed("\t", date, time)},
      {{"-csv_separator", "|"}, changed("|", date, time)},
      {{"-csv_separator", " | ", "-no_whitespace"}, changed("|", date, time)},
      {{"-bodyfile", "-csv"}, changed("|", date, time)},
      {{"-multiline"}, changed("", date, time)},
      {{"-xml"}, changed("", date, time), false},
      {{"-dateformat", "mm/dd/yyyy", "-timeformat", "hh:mm:ss"},
       changed(",", "03/04/2021", "05:06:07")},
      {{"-dateformat", "MMM dd yy"}, row},
      {{"-timeformat", "hh:mm:ss.xxxxxx"}, changed(",", date, "05:06:07.000000")},
  };
  for (const auto& c : cases) {
    const run_result result = run(c.options);
    EXPECT_EQ(result.status, 0) << c.options[0];
    const std::string text = result.results();
    EXPECT_TRUE(text.ends_with(c.row)) << text;
    const std::string above = text.substr(0, text.size() - c.row.size());
    EXPECT_EQ(above.starts_with("last mod date"), c.header) << above;
    EXPECT_EQ(std::count(above.begin(), above.end(), '\n'), c.header ? 1 : 0);
  }
}

TEST_F(one_index, FailuresOfTheOptions) {
  const std::string kept = dir.write("kept", "x");
  const std::string gone = dir.write("gone", "x");
  const struct {
    std::vector<std::string> options;
    std::string err;
    std::string out_path;  // a file that must be gone
  } cases[] = {
      {{"-sqlite", "db", "-out", kept}, "This option is not offered in this build\n", ""},
      {{"-out", "/nowhere/x"}, "prob opening file /nowhere/x for output, aborting\n", ""},
      {{"-out", gone, "-cmd_start_time", "never"}, "", gone},
      {{"-alias", "a"}, "imbalanced alias to true pathfiles, aborting\n", ""},
      {{"-profile", "-cmd_stop_time", "2020"}, "", ""},
  };
  for (const auto& c : cases) {
    const run_result result = run(c.options);
    EXPECT_EQ(result.status, 255) << c.options[0];
    EXPECT_TRUE(result.out.starts_with("udx - limited")) << c.options[0];
    EXPECT_EQ(result.results(), "") << c.options[0];
    EXPECT_EQ(result.err, c.err) << c.options[0];
    if (!c.out_path.empty()) {
      EXPECT_FALSE(std::filesystem::exists(c.out_path));
    }
  }
  EXPECT_EQ(read_file(kept), "x");
  const run_result ignored = run({"-cmd_stop_time", "2020-1-1", "-dateformat", "short"});
  EXPECT_EQ(ignored.status, 0);
  EXPECT_EQ(ignored.err,
            "invalid stop time, ignoring\ninvalid short, using default format\n" + wide_wipe);
}

TEST_F(one_index, ModesByTheirOrder) {
  const run_result refused = run({"-partition", "c"});
  EXPECT_EQ(refused.status, 255);
  EXPECT_EQ(refused.results(), "");
  EXPECT_EQ(refused.err,
            message_text("re-run [-partition] option w/ admin privileges") + wide_wipe);
}

TEST_F(one_index, ResultsFile) {
  const std::string out = dir.write("results", "old contents");
  const run_result result = run({"-out", out, "-append"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_TRUE(read_file(out).starts_with("udx - limited"));
  EXPECT_TRUE(read_file(out).ends_with("\"\n\n" + header_line + row));

  EXPECT_EQ(
      run({"-outfile", dir.path("%UDX_NAME%"), "-quiet"}, {.environment = {{"UDX_NAME", "n"}}}).err,
      "");
  EXPECT_TRUE(read_file(dir.path("n")).ends_with(row));

  // A results file equal to the input is removed before the input is read.
  const std::string self = write("self.dat");
  const run_result lost = run_udx({"-f", self, "-out", self});
  EXPECT_EQ(lost.status, 255);
  EXPECT_TRUE(read_file(self).starts_with("udx - limited"));
  EXPECT_EQ(read_file(self).find("http://a/"), std::string::npos);
}

TEST_F(one_index, AResultsFileThatCannotBeWritten) {
  sample::index_file index;
  for (int i = 0; i < 4000; ++i)
    index.add(record::url("http://www.example.com/" + std::string(60, 'x')));
  const std::string big = dir.write("big.dat", index.bytes());
  const std::string out = dir.path("results");
  const run_result result =
      run_udx({"-f", big, "-out", out}, {.shell = "trap '' XFSZ; ulimit -f 1;"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, wide_wipe);
  EXPECT_LE(read_file(out).size(), 1024u);
  EXPECT_EQ(run_udx({"-f", big}, {.shell = "exec >/dev/full;"}).status, 0);
}

TEST_F(one_index, RunDetailsFollowTheOptions) {
  const run_result dated = run({"-dateformat", "yyyy-mm-dd"});
  EXPECT_EQ(dated.out.substr(dated.out.find("run date: ") + 14, 1), "-");
  const run_result piped = run({"-PIPE", "-utf8_bom"});
  EXPECT_TRUE(piped.out.starts_with("\xEF\xBB\xBFudx - limited"));
  EXPECT_NE(piped.out.find("\"command line: <filelist> ... | "), std::string::npos);
}

TEST_F(one_index, LocaleLineGoesToStandardOutput) {
  const std::string out = dir.path("results");
  const run_result found = run({"-locale", "-out", out}, {.environment = {{"LC_ALL", "C"}}});
  EXPECT_EQ(found.out, "Using locale date format: C\n");
  EXPECT_TRUE(read_file(out).find("\n03/04/21,05:06:07.000 UTC,") != std::string::npos);
  const run_result none =
      run({"-locale", "-out", out, "-dateformat", "mm-dd-yy"},
          {.environment = {{"LC_ALL", "xx"}, {"LC_TIME", "yy"}, {"LANG", "zz"}}});
  EXPECT_EQ(none.out, "Using locale en_US date format\n");
  EXPECT_TRUE(read_file(out).ends_with(header_line + row));
}

TEST_F(one_index, ElapsedTimeComesLast) {
  const std::string diags = dir.path("diags");
  const run_result result = run({"-profile", "-diags", diags, "-quiet"});
  EXPECT_TRUE(result.err == "->0 secs\n" || result.err == "->1 secs\n") << result.err;
  const std::string text = read_file(diags);
  EXPECT_TRUE(text.starts_with("->" UDX_PROGRAM " -f ")) << text;
  EXPECT_TRUE(text.ends_with(" secs") && text.find("\n->") != std::string::npos) << text;
  EXPECT_TRUE(run({"-profile"}).err.starts_with(wide_wipe + "->"));
}

}  // namespace
