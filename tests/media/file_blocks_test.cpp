// Which blocks of a file the search is given.
#include "media/file_blocks.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"

namespace {

using calls = std::function<void(size_t)>;

// The position, size and overlap of each block, as far as `most` of them.
std::string blocks_of(const uni::fileio& file, uint64_t start, size_t most = 99,
                      const calls& between = {}) {
  std::string found;
  size_t count = 0;
  EXPECT_TRUE(scan_file_blocks(
      file,
      [&](const file_block& b) {
        if (++count <= most) found += joined(count == 1 ? "" : " ", b.position, b.size, b.overlap);
        if (between) between(count);
      },
      32768, 4096, start));
  return found;
}

TEST(FileBlocks, PositionsSizesAndOverlaps) {
  const temp_dir dir;
  check_cases("media/blocks", [&](const strings& c) {
    return blocks_of(uni::fileio(dir.write("f", std::string(number(c[0]), 'x'))), number(c[1]));
  });
  EXPECT_FALSE(scan_file_blocks(
      uni::fileio(), [](const file_block&) { FAIL(); }, 10, 1, 0));
}

TEST(FileBlocks, AShortReadLowersAllLaterOnes) {
  const temp_dir dir;
  const std::string path = dir.write("f", std::string(100000, 'x'));
  const uni::fileio file(path);
  const calls shorten = [&](size_t n) {
    EXPECT_EQ(truncate(path.c_str(), n == 1 ? 38672 : 100000), 0);
  };
  EXPECT_EQ(blocks_of(file, 0, 3, shorten), "|0|32768|4096 |28672|10000|4096 |34576|10000|4096");
  EXPECT_EQ(truncate(path.c_str(), 0), 0);  // nothing comes: one call without bytes, then the end
  EXPECT_EQ(blocks_of(file, 0), "|0|0|0");
}

}  // namespace
