// Which blocks of a file the search is given.
#include "media/source_blocks.h"

#include "tests/support/check_cases.h"
#include "tests/support/temp_dir.h"
#include "uni/fileio.h"

namespace {

CASES(media, blocks) {
  const temp_dir dir;
  const std::string path = dir.write("f", std::string(number(c["size"]), 'x'));
  const uni::fileio file(path);
  std::string found;
  size_t next = 0;
  const auto resize = [&] {
    if (next < c.inputs.size()) std::filesystem::resize_file(path, number(c[next++]));
  };
  resize();
  const auto see = [&](const source_block& b) {
    found += joined(!b.has_bytes    ? " hole"
                    : found.empty() ? ""
                                    : " ",
                    b.position, b.size, b.overlap);
    resize();
  };
  EXPECT_TRUE(scan_file_blocks(file, see, 32768, 4096, number(c["start"])));
  return found;
}

TEST(FileBlocks, OfNoFile) {
  const auto none = [](const source_block&) { FAIL(); };
  EXPECT_FALSE(scan_file_blocks(uni::fileio(), none, 10, 1, 0));
}

}  // namespace
