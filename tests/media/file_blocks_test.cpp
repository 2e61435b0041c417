// Which blocks of a file the search is given.
#include "media/file_blocks.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/temp_dir.h"

namespace {

struct seen {
  uint64_t position;
  uint32_t size, overlap;
  bool operator==(const seen&) const = default;
};
using list = std::vector<seen>;

list blocks_of(const uni::fileio& file, uint64_t start, std::function<void(size_t)> between = {}) {
  list found;
  EXPECT_TRUE(scan_file_blocks(
      file,
      [&](const file_block& b) {
        found.push_back({b.position, b.size, b.overlap});
        if (between) between(found.size());
      },
      32768, 4096, start));
  return found;
}

// clang-format off

TEST(FileBlocks, PositionsSizesAndOverlaps) {
  const temp_dir dir;
  struct blocks_case { size_t size; uint64_t start; list expected; };
  for (const auto& c : std::vector<blocks_case>{
           {0, 0, {}}, {100, 100, {}}, {100, 0, {{0, 100, 0}}}, {32767, 0, {{0, 32767, 0}}},
           {32768, 0, {{0, 32768, 4096}, {28672, 4096, 0}}},
           {32769, 0, {{0, 32768, 4096}, {28672, 4097, 4096}, {28673, 4096, 0}}},
           {61440, 0, {{0, 32768, 4096}, {28672, 32768, 4096}, {57344, 4096, 0}}},
           {32868, 100, {{100, 32768, 4096}, {28772, 4096, 0}}}}) {
    EXPECT_TRUE(blocks_of(uni::fileio(dir.write("f", std::string(c.size, 'x'))), c.start) == c.expected)
        << c.size;
  }
  EXPECT_FALSE(scan_file_blocks(uni::fileio(), [](const file_block&) { FAIL(); }, 10, 1, 0));
}

TEST(FileBlocks, AShortReadLowersAllLaterOnes) {
  const temp_dir dir;
  const std::string path = dir.write("f", std::string(100000, 'x'));
  const uni::fileio file(path);
  const list found = blocks_of(file, 0, [&](size_t n) {
    ASSERT_EQ(truncate(path.c_str(), n == 1 ? 38672 : 100000), 0);
  });
  ASSERT_GT(found.size(), 4u);
  EXPECT_EQ(found[1], (seen{28672, 10000, 4096}));
  EXPECT_EQ(found[2], (seen{34576, 10000, 4096}));
  EXPECT_EQ(found.back().position + found.back().size, 100000u);
  ASSERT_EQ(truncate(path.c_str(), 0), 0);  // nothing comes: one call without bytes, then the end
  EXPECT_EQ(blocks_of(file, 0), (list{{0, 0, 0}}));
}

}  // namespace
