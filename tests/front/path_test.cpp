// Paths: their text, the filters that take them, and the walk that finds them.
#include <gtest/gtest.h>
#include <utime.h>

#include <algorithm>
#include <numeric>

#include "front/path_match.h"
#include "front/portdir/stdin_stream_ex.h"
#include "front/portdir/zk_portable_dir.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "text/path_text.h"

namespace {

using std::string;

filter_list compiled(const string& text) {
  filter_list filters;
  parse_filter_text(filters, text);
  return filters;
}

filter_list signature(const string& value) {
  filter_list filters;
  add_signature_filter(filters, value);
  return filters;
}

bool takes(const filter_list& filters, const string& path, const cmd_params& span = {}) {
  file_stat stat;
  return filter_match(span, path, filters, stat);
}

// The paths of a walk below `root`, each with a comma behind it.
strings walked(const string& root, const string& folder, uint32_t depth,
               const filter_list& filters = {}) {
  zkportdir::stdin_stream_ex stream;
  strings paths;
  if (!stream.open_walk(folder, depth, filters)) return {"refused"};
  for (string path; stream.read_line(path, true);) paths.push_back(path.substr(root.size()) + ",");
  return paths;
}

TEST(PathText, Splitting) {
  check_cases("front/split", [](const strings& c) {
    string folder, name;
    EXPECT_TRUE(split_path(c[0], folder, name));
    return joined(folder, name);
  });
  std::wstring folder = L"x", name = L"x";
  EXPECT_FALSE(split_path(std::wstring(), folder, name));
  EXPECT_EQ(folder + name, L"");
  EXPECT_EQ(expand_env("%vss%1", true), "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy1");
}

TEST(Filter, WhichPathsAreTaken) {
  check_cases("front/filter", [](const strings& c) { return joined(takes(compiled(c[0]), c[1])); });
  EXPECT_TRUE(takes({}, "bad\xFF"));  // without a filter every path is taken
  const filter_list two = compiled("one, *two*:s*");
  EXPECT_TRUE(two.size() == 2 && two[1].raw_text == L"*two*:s*" && two[1].stream_text == L"s" &&
              two[1].has_stream && two[1].stream_star_back && !two[1].stream_star_front &&
              compiled("a:*")[0].stream_all);
  filter_list filters;
  argument_list args = {"-filter_path", "P", "-filter_path", "QQ"};
  add_filter(filters, args, "a,b");
  EXPECT_EQ(filters[1].path_text, L"p");
  add_filter(filters, args, "c");
  EXPECT_TRUE(filters.size() == 3 && filters[0].path_text == L"qq" &&
              filters[2].path_text_len == 2);
}

TEST(Filter, Signatures) {
  const temp_dir dir;
  const string path = dir.write("f", "0123\xDE\xAD\xBE\xEF");
  check_cases("front/signature", [&](const strings& c) {
    return joined(signature(c[0]).size(), takes(signature(c[0]), path));
  });
  EXPECT_EQ(signature("30 xy")[0].sig_bytes, (std::vector<uint8_t>{0x30, 0}));
  bool unreadable = false;
  EXPECT_FALSE(filter_match_wide(cmd_params(), unreadable, L"/nowhere", signature("30"), nullptr) ||
               !unreadable);
}

TEST(Filter, TimeSpan) {
  const temp_dir dir;
  const string path = dir.write("f", "x");
  check_cases("front/file_time", [&](const strings& c) {
    cmd_params span;
    span.start_unix = number32(c[0]), span.stop_unix = number32(c[1]);
    span.start_time_set = span.start_unix != 0, span.stop_time_set = span.stop_unix != 0;
    const utimbuf times = {std::stol(c[2]), std::stol(c[2])};
    EXPECT_EQ(utime(path.c_str(), &times), 0);
    EXPECT_TRUE(takes({}, path, span) && !takes(compiled("f"), "/nowhere/f", span));
    return joined(takes(compiled("f"), path, span));
  });
}

TEST(Walk, DepthOrderFiltersAndWildFolders) {
  const temp_dir dir;
  const string root = dir.path() + "/";
  for (const char* name : {"f", "a/f", "a/b/f", "a/b/c/f", "d/f", "d/g.TXT"}) dir.write(name, "x");
  std::filesystem::create_directory_symlink(root + "a", root + "link");
  std::filesystem::create_directory(root + "empty");
  const auto shown = [&](const strings& c) {
    strings paths =
        walked(root, root + c[0], number32(c[1]), c[2].empty() ? filter_list() : compiled(c[2]));
    std::sort(paths.begin(), paths.end());
    return std::accumulate(paths.begin(), paths.end(), string());
  };
  check_cases("front/walk", shown);
  dir.write("*/x", "x");  // a folder of that name ends the expansion
  EXPECT_EQ(shown({"*/b/", "0", ""}), "a/b/f,");
  EXPECT_EQ(walked("", "", 3), strings{"refused"});
  for (const string& nothing : {root + "none", root + "f", root + "empty/*/", string("bad\xFF/"),
                                std::filesystem::path(dir.path()).filename().string()}) {
    EXPECT_EQ(walked("", nothing, 3), strings{}) << nothing;
  }
  std::vector<zkportdir::_DIR_NODE_STL> listing;
  EXPECT_TRUE(zkportdir::read_folder(root, listing, 4, false, true));
  strings files;  // within a folder the order is the reverse of the listing's
  for (const auto& node : listing) {
    EXPECT_EQ(node.depth, node.is_dir ? 5u : 4u);
    EXPECT_TRUE(node.path.ends_with('/') == node.is_dir && node.name.empty() == node.is_dir);
    if (!node.is_dir) files.insert(files.begin(), node.name + ",");
  }
  EXPECT_EQ(walked(root, root, 0), files);
  std::vector<zkportdir::_DIR_NODE> nodes;
  zkportdir::list_dir(std::wstring(root.begin(), root.end()) + L"d", L"*.txt", nodes);
  EXPECT_TRUE(nodes.size() == 1 && nodes[0].name == L"g.TXT");
}

}  // namespace
