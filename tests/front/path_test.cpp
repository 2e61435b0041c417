// Paths: their text, the filters that take them, and the walk that finds them.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <algorithm>
#include <filesystem>

#include "front/filter_text.h"
#include "front/path_match.h"
#include "front/path_text.h"
#include "front/portdir/stdin_stream_ex.h"
#include "front/portdir/zk_portable_dir.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using std::string;

TEST(PathText, Splitting) {
  const struct {
    string path, folder, name;
  } cases[] = {
      {"/a/b", "/a", "b"},      {"/b", ".", "/b"},       {"b", ".", "b"},
      {"/a/", "/a", ""},        {"a\\b/c", "a", "b/c"},  {"\\a/b", "\\a", "b"},
      {"/a/..", "/a//..", "."}, {"a\\..", "a\\..", "."}, {"..", ".", ".."},
      {"\\x", ".", "\\x"},      {"a/.", "a", "."},
  };
  for (const auto& c : cases) {
    string folder, name;
    EXPECT_TRUE(split_path(c.path, folder, name));
    EXPECT_EQ(folder, c.folder) << c.path;
    EXPECT_EQ(name, c.name) << c.path;
  }
  std::wstring folder = L"x", name = L"x";
  EXPECT_FALSE(split_path(std::wstring(), folder, name));
  EXPECT_EQ(folder + name, L"");
  EXPECT_EQ(expand_env("%vss%1", true), "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy1");
}

filter_list compiled(const string& text) {
  filter_list filters;
  parse_filter_text(filters, text);
  return filters;
}

bool takes(const filter_list& filters, const string& path) {
  const cmd_params no_span;
  file_stat stat;
  return filter_match(no_span, path, filters, stat);
}

TEST(Filter, WhichPathsAreTaken) {
  const struct {
    string filter, path;
    bool taken;
  } cases[] = {
      {"*.dat", "/x/INDEX.DAT", true},
      {"*.dat", "/x/a.dat.dat", false},  // only the first place counts
      {"*.DAT", "/x/a.dat", true},
      {"index.dat", "/x/index.dat", true},
      {"index.dat", "/x/my-index.dat", false},
      {"*index*", "/x/my-index.dat.bak", true},
      {"index*", "/x/index.dat", true},
      {"index*", "/x/my-index", false},
      {"a*b", "/x/ab", true},
      {"a*b", "/x/axb", false},
      {"*", "/anything", true},
      {"**", "/anything", true},
      {"none,*", "/anything", true},
      {"a|b", "/x/b", true},
      {"a|b,c", "/x/a|b", true},
      {"a|b,c", "/x/b", false},
      {" a , b ", "/x/b", true},
      {" a ", "/x/a", false},  // one piece, untrimmed
      {",", "/x/,", true},
      {"/content.ie5", "/x/Content.IE5/y/f", true},
      {"/content.ie5", "/x/Content.IE5/f", true},
      {"/content.ie5", "/x/Content.IE52/f", false},
      {"/content.ie5", "c:\\x\\Content.IE5\\f", true},
      {"/x/f", "/x/f", false},
      {"*:stream", "/x/f", true},
      {"f:stream", "/x/f", true},
      {"f:stream", "/x/g", false},
      {"", "/x/f", false},
      {"f", "bad\xFF/f", false},
      {"f", "", false},
  };
  for (const auto& c : cases) EXPECT_EQ(takes(compiled(c.filter), c.path), c.taken) << c.filter;
  EXPECT_TRUE(takes({}, "bad\xFF"));  // without a filter every path is taken

  const filter_list two = compiled("one, *two*:s*");
  ASSERT_EQ(two.size(), 2u);
  EXPECT_EQ(two[1].raw_text, L"*two*:s*");
  EXPECT_EQ(two[1].stream_text, L"s");
  EXPECT_TRUE(two[1].has_stream && two[1].stream_star_back && !two[1].stream_star_front);
  EXPECT_TRUE(compiled("a:*")[0].stream_all);
}

TEST(Filter, OptionsAddUp) {
  filter_list filters;
  argument_list args = {"-filter_path", "P", "-filter_path", "QQ"};
  add_filter(filters, args, "a,b");
  EXPECT_EQ(filters[1].path_text, L"p");
  add_filter(filters, args, "c");
  ASSERT_EQ(filters.size(), 3u);
  EXPECT_EQ(filters[0].path_text, L"qq");
  EXPECT_EQ(filters[2].path_text_len, 2u);
}

TEST(Filter, Signatures) {
  const temp_dir dir;
  const string path = dir.write("f", "0123\xDE\xAD\xBE\xEF");
  const struct {
    const char* value;
    size_t entries;
    bool taken;
  } cases[] = {
      {"30 31", 1, true},
      {"DE AD BE EF|4", 1, true},
      {"DE AD BE EF|5", 1, false},
      {"de ad be ef, 0x4", 1, true},
      {"31", 1, false},
      {"1DE|4", 1, true},
      {"31|1|9", 1, false},
      {"30|0|9", 1, true},
      {"", 0, true},
      {"30 xy", 1, false},
      {"30|-1", 1, false},
      {"30|99999999999999999999", 1, false},
  };
  for (const auto& c : cases) {
    filter_list filters;
    add_signature_filter(filters, c.value);
    EXPECT_EQ(filters.size(), c.entries) << c.value;
    EXPECT_EQ(takes(filters, path), c.taken) << c.value;
  }
  filter_list filters;
  add_signature_filter(filters, "30 xy");
  EXPECT_EQ(filters[0].sig_bytes, (std::vector<uint8_t>{0x30, 0}));
  bool unreadable = false;
  EXPECT_FALSE(filter_match_wide(cmd_params(), unreadable, L"/nowhere", filters, nullptr));
  EXPECT_TRUE(unreadable);
}

TEST(Filter, TimeSpan) {
  const temp_dir dir;
  const string path = dir.write("f", "x");
  const struct {
    uint32_t start, stop;  // 0 for none
    time_t modified;
    bool taken;
  } cases[] = {
      {1000, 0, 1000, true},  {1000, 0, 999, false},          {0, 1000, 1000, true},
      {0, 1000, 1001, false}, {1000, 0xFFFFFFFF, 5000, true}, {1000, 0, -5, false},
      {1, 0, 0, false},       {1, 0, 1LL << 33, false},
  };
  for (const auto& c : cases) {
    cmd_params span;
    span.start_time_set = c.start != 0;
    span.stop_time_set = c.stop != 0;
    span.start_unix = c.start;
    span.stop_unix = c.stop;
    const utimbuf times = {c.modified, c.modified};
    ASSERT_EQ(utime(path.c_str(), &times), 0);
    file_stat stat;
    EXPECT_EQ(filter_match(span, path, compiled("f"), stat), c.taken) << c.modified;
    EXPECT_TRUE(filter_match(span, path, {}, stat));
    file_stat missing;
    EXPECT_FALSE(filter_match(span, "/nowhere/f", compiled("f"), missing));
  }
}

std::vector<string> walked(const string& folder, uint32_t depth, const filter_list& filters = {}) {
  zkportdir::stdin_stream_ex stream;
  std::vector<string> paths;
  if (!stream.open_walk(folder, depth, filters)) return {"refused"};
  for (string path; stream.read_line(path, true);) paths.push_back(path);
  return paths;
}

struct tree : testing::Test {
  const temp_dir dir;
  const string root = dir.path() + "/";

  tree() {
    for (const char* name : {"f", "a/f", "a/b/f", "a/b/c/f", "d/f", "d/g.TXT"}) {
      dir.write(name, "x");
    }
    fs::create_directory_symlink(root + "a", root + "link");
    fs::create_directory(root + "empty");
  }
  std::vector<string> sorted(std::vector<string> paths) const {
    for (string& path : paths) {
      EXPECT_TRUE(path.starts_with(root)) << path;
      path.erase(0, root.size());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }
};

TEST_F(tree, DepthLinksAndFilters) {
  using list = std::vector<string>;
  EXPECT_EQ(sorted(walked(root, 0)), (list{"f", "link"}));
  EXPECT_EQ(sorted(walked(dir.path(), 0)), (list{"f", "link"}));
  EXPECT_EQ(sorted(walked(root, 1)), (list{"a/f", "d/f", "d/g.TXT", "f", "link"}));
  EXPECT_EQ(walked(root, 99).size(), 7u);
  EXPECT_EQ(sorted(walked(root, 3, compiled("f"))), (list{"a/b/c/f", "a/b/f", "a/f", "d/f", "f"}));
  EXPECT_EQ(sorted(walked(root, 3, compiled("/a/b"))), (list{"a/b/c/f", "a/b/f"}));
  EXPECT_EQ(walked("", 3), list{"refused"});
  EXPECT_EQ(walked(root + "none", 3), list{});
  EXPECT_EQ(walked(root + "f", 3), list{});
  EXPECT_EQ(walked("bad\xFF/", 3), list{});
  EXPECT_EQ(walked(fs::path(dir.path()).filename(), 0), list{});  // a backslash is joined to it
}

TEST_F(tree, OrderIsTheReverseOfTheListing) {
  std::vector<zkportdir::_DIR_NODE_STL> listing;
  EXPECT_TRUE(zkportdir::read_folder(root, listing, 4, false, true));
  std::vector<string> files;
  for (const auto& node : listing) {
    EXPECT_EQ(node.depth, node.is_dir ? 5u : 4u);
    EXPECT_EQ(node.path.back() == '/', node.is_dir);
    EXPECT_EQ(node.name.empty(), node.is_dir);
    if (!node.is_dir) files.insert(files.begin(), node.path);
  }
  EXPECT_EQ(walked(root, 0), files);
  // Depth first: a folder's files come before those of the folders listed ahead of it.
  std::vector<string> folders;
  for (const string& path : walked(root, 9)) {
    const string top = path.substr(root.size(), path.find('/', root.size()) - root.size());
    if (folders.empty() || folders.back() != top) folders.push_back(top);
  }
  EXPECT_EQ(std::set<string>(folders.begin(), folders.end()).size(), folders.size());
  listing.clear();
  EXPECT_FALSE(zkportdir::read_folder(root + "empty/", listing, 0, false, true));
  EXPECT_FALSE(zkportdir::read_folder(root + "a/b/c/", listing, 0, true, true));
}

TEST_F(tree, WildFolders) {
  using list = std::vector<string>;
  EXPECT_EQ(sorted(walked(root + "*", 0)), (list{"a/f", "d/f", "d/g.TXT"}));
  EXPECT_EQ(sorted(walked(root + "*/b/", 0)), list{"a/b/f"});
  EXPECT_EQ(sorted(walked(root + "*/*/*/", 0)), list{"a/b/c/f"});
  EXPECT_EQ(walked(root + "empty/*/", 0), list{});
  // Cut at a star that stands for no whole folder, and joined without a separator.
  EXPECT_EQ(sorted(walked(root + "d*", 0)), (list{"df", "dg.TXT"}));
  dir.write("*/x", "x");  // a folder of that name ends the expansion
  EXPECT_EQ(sorted(walked(root + "*/*/", 0)), list{"a/b/f"});

  std::vector<zkportdir::_DIR_NODE> nodes;
  zkportdir::list_dir(std::wstring(root.begin(), root.end()) + L"d", L"*.txt", nodes);
  ASSERT_EQ(nodes.size(), 1u);
  EXPECT_EQ(nodes[0].name, L"g.TXT");
}

}  // namespace
