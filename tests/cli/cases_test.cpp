// Runs the cases of cases.txt, which says how they are written.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <sstream>

#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using std::string;

const string help_text =
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
  write_index(dir, "one.dat", 1000000000);
  write_index(dir, "two.dat", 1600000000);
  for (const char* name : {"MSHist/index.dat", "a/index.dat", "a/b/deep.dat"}) {
    write_index(dir, name);
  }
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
  if (key == "bad") return message_text("probs parsing file: " + value);
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
  return key == "help" ? help_text : wide_wipe;  // {wipe}, and {end}, the run's own
}

string expanded(const temp_dir& dir, string text) {
  for (size_t close; (close = text.find('}')) != string::npos;) {
    const size_t open = text.rfind('{', close);
    text.replace(open, close - open + 1, variable(dir, text.substr(open + 1, close - open - 1)));
  }
  return text;
}

string unescaped(const string& text) {
  string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] == '\\' ? text[++i] : '\1';
    if (c == 'x') {
      out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      const size_t at = string("ntr0").find(c);
      out += at == string::npos ? text[i] : "\n\t\r\0"[at];
    }
  }
  return out;
}

std::vector<string> words(const string& line) {
  std::vector<string> found;
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
  const std::vector<string> parts = cells(pattern, '*');
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
  run_setup setup;
  std::vector<string> arguments;
  std::map<string, string> expected = {{"out", ""}, {"err", "{end}"}, {"status", "0"}};
  for (const auto& [key, raw] : lines) {
    const string text = expanded(dir, unescaped(raw));
    if (key == "run") arguments = words(text);
    if (key == "in") setup.input = text;
    if (key == "cd") setup.folder = text;
    if (key == "sh") setup.shell = text;
    if (key == "env")
      setup.environment[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
    if (key == "all") expected.erase("out");
    expected[key] = text;
  }
  const run_result run = run_udx(arguments, setup);
  EXPECT_EQ(std::to_string(run.status), expected["status"]);
  const auto expect = [&](const string& text, const string& pattern) {
    EXPECT_TRUE(matches(text, pattern)) << "found:\n" << text << "\nexpected:\n" << pattern;
  };
  expect(run.err, expanded(dir, expected["err"]));
  if (expected.contains("out")) {
    // Help needs no run details above it.
    expect(run.out.empty() && run.status == 0 ? "" : run.results(), expected["out"]);
  } else {
    expect(run.out, expected["all"]);
  }
  if (expected.contains("gone")) {
    EXPECT_FALSE(std::filesystem::exists(dir.path(expected["gone"])));
  }
  if (const string file = expected["file"]; !file.empty()) {
    const size_t blank = std::min(file.find(' '), file.size());
    expect(read_file(dir.path(file.substr(0, blank))),
           file.substr(std::min(blank + 1, file.size())));
  }
}

TEST(CommandLine, Cases) {
  std::ifstream in(UDX_SOURCE "/tests/cli/cases.txt");
  std::vector<std::pair<string, string>> lines;
  int cases = 0;
  for (string line; in; line.clear()) {
    std::getline(in, line);
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

}  // namespace
