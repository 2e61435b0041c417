// Which blocks of a file the search is given.
#include "media/file_blocks.h"

#include <gtest/gtest.h>

#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"

namespace {

TEST(FileBlocks, PositionsSizesAndOverlaps) {
  const temp_dir dir;
  check_cases("media/blocks", [&](const strings& c) {
    const std::string path = dir.write("f", std::string(number(c[0]), 'x'));
    const uni::fileio file(path);
    std::string found;
    size_t next = 2;
    const auto resize = [&] {
      if (next < c.size()) std::filesystem::resize_file(path, number(c[next++]));
    };
    resize();
    const auto see = [&](const file_block& b) {
      found += joined(found.empty() ? "" : " ", b.position, b.size, b.overlap);
      resize();
    };
    EXPECT_TRUE(scan_file_blocks(file, see, 32768, 4096, number(c[1])));
    return found;
  });
  EXPECT_FALSE(scan_file_blocks(
      uni::fileio(), [](const file_block&) { FAIL(); }, 10, 1, 0));
}

}  // namespace
