// Paths: their text, the filters that take them, and the walk that finds them.
#include <gtest/gtest.h>
#include <utime.h>

#include <algorithm>

#include "front/path_match.h"
#include "front/portdir/stdin_stream_ex.h"
#include "front/portdir/zk_portable_dir.h"
#include "tests/support/temp_dir.h"
#include "text/path_text.h"

namespace {

using std::string;
using list = std::vector<string>;

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

// The paths of a walk below `root`, in order unless `sorted`.
list walked(const string& root, const string& folder, uint32_t depth,
            const filter_list& filters = {}) {
  zkportdir::stdin_stream_ex stream;
  list paths;
  if (!stream.open_walk(folder, depth, filters)) return {"refused"};
  for (string path; stream.read_line(path, true);) paths.push_back(path.substr(root.size()));
  return paths;
}

// clang-format off

TEST(PathText, Splitting) {
  struct split_case { string path, folder, name; };
  for (const auto& c : std::vector<split_case>{{"/a/b", "/a", "b"}, {"/b", ".", "/b"}, {"b", ".", "b"}, {"/a/", "/a", ""},
           {"a\\b/c", "a", "b/c"}, {"\\a/b", "\\a", "b"}, {"/a/..", "/a//..", "."}, {"a\\..", "a\\..", "."},
           {"..", ".", ".."}, {"\\x", ".", "\\x"}, {"a/.", "a", "."}}) {
    string folder, name;
    EXPECT_TRUE(split_path(c.path, folder, name));
    EXPECT_EQ(folder + "|" + name, c.folder + "|" + c.name) << c.path;
  }
  std::wstring folder = L"x", name = L"x";
  EXPECT_FALSE(split_path(std::wstring(), folder, name));
  EXPECT_EQ(folder + name, L"");
  EXPECT_EQ(expand_env("%vss%1", true), "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy1");
}

TEST(Filter, WhichPathsAreTaken) {
  struct filter_case { string filter, path; bool taken; };
  for (const auto& c : std::vector<filter_case>{
           {"*.dat", "/x/INDEX.DAT", true}, {"*.dat", "/x/a.dat.dat", false}, {"*.DAT", "/x/a.dat", true},
           {"index.dat", "/x/index.dat", true}, {"index.dat", "/x/my-index.dat", false}, {"*index*", "/x/my-index.dat.bak", true},
           {"index*", "/x/index.dat", true}, {"index*", "/x/my-index", false}, {"a*b", "/x/ab", true}, {"a*b", "/x/axb", false},
           {"*", "/x", true}, {"**", "/x", true}, {"none,*", "/x", true}, {"a|b", "/x/b", true}, {"a|b,c", "/x/a|b", true},
           {"a|b,c", "/x/b", false}, {" a , b ", "/x/b", true}, {" a ", "/x/a", false}, {",", "/x/,", true},
           {"/content.ie5", "/x/Content.IE5/y/f", true}, {"/content.ie5", "/x/Content.IE5/f", true},
           {"/content.ie5", "/x/Content.IE52/f", false}, {"/content.ie5", "c:\\x\\Content.IE5\\f", true}, {"/x/f", "/x/f", false},
           {"*:stream", "/x/f", true}, {"f:stream", "/x/f", true}, {"f:stream", "/x/g", false}, {"", "/x/f", false},
           {"f", "bad\xFF/f", false}, {"f", "", false}}) {
    EXPECT_EQ(takes(compiled(c.filter), c.path), c.taken) << c.filter << ' ' << c.path;
  }
  EXPECT_TRUE(takes({}, "bad\xFF"));  // without a filter every path is taken
  const filter_list two = compiled("one, *two*:s*");
  EXPECT_TRUE(two.size() == 2 && two[1].raw_text == L"*two*:s*" && two[1].stream_text == L"s" && two[1].has_stream &&
              two[1].stream_star_back && !two[1].stream_star_front && compiled("a:*")[0].stream_all);
  filter_list filters;
  argument_list args = {"-filter_path", "P", "-filter_path", "QQ"};
  add_filter(filters, args, "a,b");
  EXPECT_EQ(filters[1].path_text, L"p");
  add_filter(filters, args, "c");
  EXPECT_TRUE(filters.size() == 3 && filters[0].path_text == L"qq" && filters[2].path_text_len == 2);
}

TEST(Filter, Signatures) {
  const temp_dir dir;
  const string path = dir.write("f", "0123\xDE\xAD\xBE\xEF");
  struct signature_case { const char* value; size_t entries; bool taken; };
  for (const auto& c : std::vector<signature_case>{
           {"30 31", 1, true}, {"DE AD BE EF|4", 1, true}, {"DE AD BE EF|5", 1, false}, {"de  ad be ef, 0x4", 1, true},
           {"31", 1, false}, {"1DE|4", 1, true}, {"31|1|9", 1, false}, {"30|0|9", 1, true}, {"", 0, true},
           {"30 xy", 1, false}, {"30|-1", 1, false}, {"30|99999999999999999999", 1, false}}) {
    EXPECT_EQ(signature(c.value).size(), c.entries) << c.value;
    EXPECT_EQ(takes(signature(c.value), path), c.taken) << c.value;
  }
  EXPECT_EQ(signature("30 xy")[0].sig_bytes, (std::vector<uint8_t>{0x30, 0}));
  bool unreadable = false;
  EXPECT_FALSE(filter_match_wide(cmd_params(), unreadable, L"/nowhere", signature("30"), nullptr));
  EXPECT_TRUE(unreadable);
}

TEST(Filter, TimeSpan) {
  const temp_dir dir;
  const string path = dir.write("f", "x");
  struct span_case { uint32_t start, stop; time_t modified; bool taken; };  // 0 for no start or stop
  for (const auto& c : std::vector<span_case>{{1000, 0, 1000, true}, {1000, 0, 999, false}, {0, 1000, 1000, true},
           {0, 1000, 1001, false}, {1000, 0xFFFFFFFF, 5000, true}, {1000, 0, -5, false}, {1, 0, 0, false}, {1, 0, 1LL << 33, false}}) {
    cmd_params span;
    span.start_time_set = c.start != 0, span.stop_time_set = c.stop != 0;
    span.start_unix = c.start, span.stop_unix = c.stop;
    const utimbuf times = {c.modified, c.modified};
    ASSERT_EQ(utime(path.c_str(), &times), 0);
    EXPECT_EQ(takes(compiled("f"), path, span), c.taken) << c.modified;
    EXPECT_TRUE(takes({}, path, span) && !takes(compiled("f"), "/nowhere/f", span));
  }
}

TEST(Walk, DepthOrderFiltersAndWildFolders) {
  const temp_dir dir;
  const string root = dir.path() + "/";
  for (const char* name : {"f", "a/f", "a/b/f", "a/b/c/f", "d/f", "d/g.TXT"}) dir.write(name, "x");
  std::filesystem::create_directory_symlink(root + "a", root + "link");
  std::filesystem::create_directory(root + "empty");
  const auto sorted = [&](const string& folder, uint32_t depth, const char* filter = nullptr) {
    list paths = walked(root, root + folder, depth, filter ? compiled(filter) : filter_list());
    std::sort(paths.begin(), paths.end());
    return paths;
  };
  EXPECT_EQ(sorted("", 0), (list{"f", "link"}));
  EXPECT_EQ(sorted("", 1), (list{"a/f", "d/f", "d/g.TXT", "f", "link"}));
  EXPECT_EQ(sorted("", 99).size(), 7u);
  EXPECT_EQ(sorted("", 3, "f"), (list{"a/b/c/f", "a/b/f", "a/f", "d/f", "f"}));
  EXPECT_EQ(sorted("", 3, "/a/b"), (list{"a/b/c/f", "a/b/f"}));
  EXPECT_EQ(sorted("*", 0), (list{"a/f", "d/f", "d/g.TXT"}));
  EXPECT_EQ(sorted("*/*/*/", 0), list{"a/b/c/f"});
  EXPECT_EQ(sorted("d*", 0), (list{"df", "dg.TXT"}));  // cut at the star, and joined as it is
  dir.write("*/x", "x");  // a folder of that name ends the expansion
  EXPECT_EQ(sorted("*/b/", 0), list{"a/b/f"});
  EXPECT_EQ(walked("", "", 3), list{"refused"});
  for (const string& nothing : {root + "none", root + "f", root + "empty/*/", string("bad\xFF/"),
                                std::filesystem::path(dir.path()).filename().string()}) {
    EXPECT_EQ(walked("", nothing, 3), list{}) << nothing;
  }
  std::vector<zkportdir::_DIR_NODE_STL> listing;
  EXPECT_TRUE(zkportdir::read_folder(root, listing, 4, false, true));
  list files;  // within a folder the order is the reverse of the listing's
  for (const auto& node : listing) {
    EXPECT_EQ(node.depth, node.is_dir ? 5u : 4u);
    EXPECT_TRUE(node.path.ends_with('/') == node.is_dir && node.name.empty() == node.is_dir);
    if (!node.is_dir) files.insert(files.begin(), node.name);
  }
  EXPECT_EQ(walked(root, root, 0), files);
  std::vector<zkportdir::_DIR_NODE> nodes;
  zkportdir::list_dir(std::wstring(root.begin(), root.end()) + L"d", L"*.txt", nodes);
  EXPECT_TRUE(nodes.size() == 1 && nodes[0].name == L"g.TXT");
}

}  // namespace
