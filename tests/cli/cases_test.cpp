// Runs the cases of cases.txt, which says how they are written.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <map>

#include "tests/support/case_file.h"
#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/sample_records.h"

namespace {

using std::string;

// An index of one record whose URL is the file's name.
string write_index(const temp_dir& dir, const string& name, time_t modified = 0) {
  auto made = sample::record::url(name.substr(name.rfind('/') + 1));
  made.last_mod(sample::filetime_of(2021, 3, 4, 5, 6, 7));
  const string path = dir.write(name, sample::index_file().directories({"DIR1"}).add(made).bytes());
  const utimbuf times = {modified, modified};
  if (modified != 0) utime(path.c_str(), &times);
  return path;
}

void fill(const temp_dir& dir) {
  const utimbuf old = {1000000000, 1000000000};
  utime(dir.write("index.dat", sample::small_index().bytes()).c_str(), &old);
  chmod(dir.path("index.dat").c_str(), 0400);
  write_index(dir, "one.dat", 1000000000);
  write_index(dir, "two.dat", 1600000000);
  for (const char* name : {"MSHist/index.dat", "a/index.dat", "a/b/deep.dat"})
    write_index(dir, name);
  std::filesystem::resize_file(write_index(dir, "large"), 0x1000001);
  std::filesystem::create_directory_symlink(dir.path("a/b"), dir.path("a/link"));
  dir.write("noise", string(9000, '?'));
  dir.write("empty", "");
  dir.write("\xFF", "x");
  mkfifo(dir.path("fifo").c_str(), 0600);
}

// What stands between the braces.
string variable(const temp_dir& dir, const string& name) {
  const size_t colon = std::min(name.find(':'), name.size());
  const string key = name.substr(0, colon), value = name.substr(std::min(colon + 1, name.size()));
  if (key == "x") return string(std::stoul(value), 'x');
  if (key == "bad") return wide_wipe + "probs parsing file: " + value;
  if (key == "header") {
    string line;
    for (const string& cell : cells(header_line)) line += (line.empty() ? "" : value) + cell;
    return colon < name.size() ? line : header_line;
  }
  if (key == "one" || key == "two") {
    return "2021-03-04,05:06:07.000 UTC,,,,,,,URL ," + key + ".dat,,,0," +
           string("DIR1\0\0\0\0", 8) + ",0," + key + ".dat," + dir.path(key) + ".dat\n";
  }
  if (key == "dir") return dir.path();
  if (key == "udx") return UDX_PROGRAM;
  return key == "help" ? source_file("tests/cli/help.txt")
                       : wide_wipe;  // {wipe}, and {end}, the run's own
}

string expanded(const temp_dir& dir, string text) {
  for (size_t close; (close = text.find('}')) != string::npos;) {
    const size_t open = text.rfind('{', close);
    text.replace(open, close - open + 1, variable(dir, text.substr(open + 1, close - open - 1)));
  }
  return text;
}

strings words(const string& line) {
  strings found;
  std::istringstream in(line);
  for (string word; in >> std::ws, !in.eof(); found.push_back(word)) {
    const bool quoted = in.peek() == '\'';
    if (quoted) in.get();
    std::getline(in, word, quoted ? '\'' : ' ');
  }
  return found;
}

// Whether the text is the pattern's, in which * stands for anything.
bool matches(const string& text, const string& pattern) {
  const strings parts = cells(pattern, '*');
  size_t at = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    const bool last = i + 1 == parts.size() && i > 0;
    const size_t found = last ? text.rfind(parts[i]) : text.find(parts[i], at);
    if (found == string::npos || found < at || (i == 0 && found != 0)) return false;
    at = found + parts[i].size();
  }
  return at == text.size();
}

void run_case(const std::vector<std::pair<string, string>>& lines) {
  const temp_dir dir;
  fill(dir);
  string setup, input;
  strings arguments;
  const string details = "udx - limited*\n\"command line: *\"\n\n";
  std::map<string, string> expected = {{"all", details}, {"err", "{end}"}, {"status", "0"}};
  for (const auto& [key, raw] : lines) {
    const string text = expanded(dir, unescaped(raw));
    if (key == "run") arguments = words(text);
    if (key == "in") input = text;
    if (key == "cd") setup += "cd " + quoted(text) + " && ";
    if (key == "sh") setup += text;
    if (key == "env") setup += "export " + quoted(text) + "; ";
    expected[key == "out" ? "all" : key] = key == "out" ? details + text : text;
  }
  const run_result run = run_udx(arguments, setup, input);
  EXPECT_EQ(std::to_string(run.status), expected["status"]);
  const auto expect = [&](const string& text, const string& pattern) {
    EXPECT_TRUE(matches(text, pattern)) << "found:\n" << text << "\nexpected:\n" << pattern;
  };
  expect(run.err, expanded(dir, expected["err"]));
  expect(run.out, expected["all"]);
  EXPECT_FALSE(expected.contains("gone") && std::filesystem::exists(dir.path(expected["gone"])));
  if (const string file = expected["file"]; !file.empty()) {
    const size_t blank = std::min(file.find(' '), file.size());
    expect(read_file(dir.path(file.substr(0, blank))),
           file.substr(std::min(blank + 1, file.size())));
  }
  // An input stays as it was, and the example as the sample maker writes it.
  EXPECT_EQ(read_file(dir.path("index.dat")), source_file("examples/index.dat"));
}

TEST(CommandLine, Cases) {
  std::vector<std::pair<string, string>> lines;
  int cases = 0;
  for (const string& line : cells(source_file("tests/cli/cases.txt"), '\n')) {
    if (line.starts_with('#')) continue;
    if (!line.empty()) {
      const size_t blank = std::min(line.find(' '), line.size());
      lines.emplace_back(line.substr(0, blank), line.substr(std::min(blank + 1, line.size())));
    } else if (!lines.empty()) {
      SCOPED_TRACE("run " + lines[0].second);
      run_case(lines);
      lines.clear();
      ++cases;
    }
  }
  EXPECT_GT(cases, 60);
}

// Real indexes, run where a folder of them is named when the build is configured.
TEST(RealIndexes, EveryRecordOnTheGrid) {
  const char* const folder = std::getenv("UDX_CORPUS");
  ASSERT_NE(folder, nullptr);
  size_t files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().filename() != "index.dat") continue;
    ++files;
    const string bytes = read_file(entry.path());
    strings expected;
    for (size_t at = 128; at + 4 < bytes.size(); at += 128) {
      const string four = bytes.substr(at, 4);
      if (four == "URL " || four == "LEAK" || four == "REDR") expected.push_back(four);
    }
    strings found;
    for (const string& row : cells(run_udx({"-f", entry.path()}).out, '\n')) {
      const strings row_cells = cells(row);
      if (row_cells.size() == 17 && row_cells[8] != "type") found.push_back(row_cells[8]);
    }
    EXPECT_EQ(found, expected) << entry.path();
  }
  EXPECT_GT(files, 0U);
}

}  // namespace
