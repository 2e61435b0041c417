// Paths: the filters that take them, and the walk that finds them, as cases.txt tells.
#include <numeric>
#include <set>
#include <utility>

#include "front/arguments.h"
#include "front/filter_text.h"
#include "front/path_match.h"
#include "front/portdir/stdin_stream_ex.h"
#include "front/portdir/zk_portable_dir.h"
#include "opts/path_filter.h"
#include "tests/support/check_cases.h"
#include "tests/support/temp_dir.h"
#include "text/zk_wide.h"

namespace {

using std::string;

filter_list compiled(const string& text) {
  filter_list filters;
  parse_filter_text(filters, text);
  return filters;
}

bool takes(const filter_list& filters, const string& path) {
  bool unreadable = false;
  return filter_match({}, unreadable, path, filters, nullptr);
}

// The names of what is set.
string flags_of(const path_filter& f) {
  const std::pair<bool, const char*> flags[] = {{f.is_path, " path"},
                                                {f.match_all, " all"},
                                                {f.star_front, " star-ahead"},
                                                {f.star_back, " star-behind"},
                                                {f.has_stream, " stream"},
                                                {f.stream_all, " any-stream"},
                                                {f.stream_star_front, " stream-star-ahead"},
                                                {f.stream_star_back, " stream-star-behind"}};
  string names;
  for (const auto& [set, name] : flags) names += set ? name : "";
  return names;
}

CASES(front, filter) {
  return joined(takes(compiled(c[0]), c[1]));
}

CASES(front, filter_text) {
  filter_list filters;
  argument_list args = c.inputs;
  for (const string& value : cells(c["values"], ';')) add_filter(filters, args, value);
  string seen;
  for (const path_filter& f : filters) {
    for (const auto& text : {f.raw_text, f.match_text, f.stream_text, f.path_text}) {
      seen += zk::wide_to_utf8(text) + "|";
    }
    seen += std::to_string(f.path_text_len) + flags_of(f) + "; ";
  }
  return seen.substr(0, seen.find_last_not_of(' ') + 1);
}

CASES(front, signature) {
  const temp_dir dir;
  dir.write("f", std::vector<uint8_t>{0x30, 0x31, 0x32, 0x33, 0xDE, 0xAD, 0xBE, 0xEF, 0x30, 0});
  filter_list filters;
  add_signature_filter(filters, c[1]);
  bool unreadable = false;
  const string path = c[0].starts_with('/') ? c[0] : dir.path(c[0]);
  const bool taken = filter_match({}, unreadable, path, filters, nullptr);
  return joined(filters.size(), taken, unreadable);
}

// A tree of folders, in which the program stands once it is made.
struct tree : temp_dir {
  tree() {
    for (const char* name :
         {"t/f", "t/a/f", "t/a/b/f", "t/a/b/c/f", "t/d/f", "t/d/g.TXT", "t/u/\xFF", "t/u/\xC0\xAFx",
          "t/u/\xC0\xAE\xC0\xAE/x", "star/*/x", "star/a/b/f", "cut/d/sub", "cut/dsub/y"}) {
      write(name, "x");
    }
    std::filesystem::current_path(path("t"));
    std::filesystem::create_directory_symlink("a", "link");
    std::filesystem::create_directory("empty");
  }
};

string in_order(const std::multiset<string>& texts) {
  return std::accumulate(texts.begin(), texts.end(), string());
}

CASES(front, walk) {
  static const tree around;
  zkportdir::stdin_stream_ex stream;
  const filter_list filters = c[2].empty() ? filter_list() : compiled(c[2]);
  if (!stream.open_walk(c[0], number32(c[1]), filters)) return "refused";
  std::multiset<string> paths;
  for (string path; stream.getline(path, true);) paths.insert(path + ",");
  return in_order(paths);
}

CASES(front, list) {
  static const tree around;
  std::multiset<string> entries;
  zkportdir::list_dir(c[0], c[1], [&](const zkportdir::_DIR_NODE_STL& node) {
    entries.insert(joined(node.path, node.path.substr(node.name_at), node.is_dir) + ",");
  });
  const auto ignored = [](const auto&) {};
  EXPECT_TRUE(zkportdir::read_folder("./", false, true, ignored));
  EXPECT_FALSE(zkportdir::read_folder("./empty/", false, true, ignored));
  return in_order(entries);
}

}  // namespace
