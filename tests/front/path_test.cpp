// Paths: the filters that take them, and the walk that finds them, as cases.txt tells.
#include <gtest/gtest.h>
#include <utime.h>

#include <numeric>
#include <set>

#include "front/path_match.h"
#include "front/portdir/stdin_stream_ex.h"
#include "front/portdir/zk_portable_dir.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "text/zk_wide.h"

namespace {

using std::string;

filter_list compiled(const string& text) {
  filter_list filters;
  parse_filter_text(filters, text);
  return filters;
}

bool takes(const filter_list& filters, const string& path, const cmd_params& span = {}) {
  file_stat stat;
  bool unreadable = false;
  return filter_match(span, unreadable, path, filters, &stat);
}

TEST(Filter, TextAndPathsTaken) {
  check_cases("front/filter", [](const strings& c) { return joined(takes(compiled(c[0]), c[1])); });
  check_cases("front/filter_text", [](const strings& c) {
    filter_list filters;
    argument_list args(c.begin() + 1, c.end());
    for (const string& value : cells(c[0], ';')) add_filter(filters, args, value);
    string seen;
    for (const path_filter& f : filters) {
      for (const auto& text : {f.raw_text, f.match_text, f.stream_text, f.path_text})
        seen += zk::wide_to_utf8(text) + "|";
      for (const bool flag : {f.is_path, f.match_all, f.star_front, f.star_back, f.has_stream,
                              f.stream_all, f.stream_star_front, f.stream_star_back})
        seen += flag ? '1' : '0';
      seen += "|" + std::to_string(f.path_text_len) + "; ";
    }
    return seen.substr(0, seen.find_last_not_of(' ') + 1);
  });
}

TEST(Filter, Signatures) {
  const temp_dir dir;
  dir.write("f", std::vector<uint8_t>{0x30, 0x31, 0x32, 0x33, 0xDE, 0xAD, 0xBE, 0xEF, 0x30, 0});
  check_cases("front/signature", [&](const strings& c) {
    filter_list filters;
    add_signature_filter(filters, c[1]);
    bool unreadable = false;
    const bool taken =
        filter_match_wide({}, unreadable, zk::utf8_to_wide(dir.path(c[0])), filters, nullptr);
    return joined(filters.size(), taken, unreadable);
  });
}

TEST(Filter, TimeSpan) {
  const temp_dir dir;
  const string path = dir.write("f", "x");
  check_cases("front/file_time", [&](const strings& c) {
    cmd_params span;
    span.start_unix = number32(c[0]), span.stop_unix = number32(c[1]);
    span.start_time_set = span.start_unix != 0, span.stop_time_set = span.stop_unix != 0;
    const utimbuf times = {std::stoll(c[2]), std::stoll(c[2])};
    EXPECT_EQ(utime(path.c_str(), &times), 0);
    return joined(takes(compiled("f"), path, span), takes({}, path, span),
                  takes(compiled("f"), "/nowhere/f", span));
  });
}

TEST(Walk, FoldersDepthAndFilters) {
  const temp_dir dir;
  for (const char* name : {"t/f", "t/a/f", "t/a/b/f", "t/a/b/c/f", "t/d/f", "t/d/g.TXT", "t/u/\xFF",
                           "t/u/\xC0\xAFx", "star/*/x", "star/a/b/f"})
    dir.write(name, "x");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(dir.path("t"));
  std::filesystem::create_directory_symlink("a", "link");
  std::filesystem::create_directory("empty");
  check_cases("front/walk", [](const strings& c) {
    zkportdir::stdin_stream_ex stream;
    const filter_list filters = c[2].empty() ? filter_list() : compiled(c[2]);
    if (!stream.open_walk(c[0], number32(c[1]), filters)) return string("refused");
    std::multiset<string> paths;
    for (string path; stream.getline(path, true);) paths.insert(path + ",");
    return std::accumulate(paths.begin(), paths.end(), string());
  });
  check_cases("front/list", [](const strings& c) {
    std::multiset<string> entries;
    zkportdir::list_dir(c[0], c[1], [&](const zkportdir::_DIR_NODE_STL& node) {
      entries.insert(joined(node.path, node.path.substr(node.name_at), node.is_dir) + ",");
    });
    return std::accumulate(entries.begin(), entries.end(), string());
  });
  std::filesystem::current_path(before);
}

}  // namespace
