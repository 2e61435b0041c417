// The large road: where it begins, its borders, and its progress.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "cache/parse_input.h"
#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::record;

constexpr uint64_t limit = 0x1000000;

// A file of `size` bytes, zeros but for a record at `at`, as a run shows it.
struct parsed {
  bool result;
  std::string out, err;

  parsed(const temp_dir& dir, uint64_t size, uint64_t at, const record& placed, bool progress) {
    const std::string path = dir.write("f", "");
    std::filesystem::resize_file(path, size);
    const auto bytes = placed.bytes();
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(at));
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(std::min<uint64_t>(bytes.size(), size - at)));
    file.close();
    cmd_opts opts;
    opts.input_path = path;
    opts.any_signature = true;
    opts.header_pending = false;
    opts.show_progress = progress;
    std::ostringstream rows;
    testing::internal::CaptureStderr();
    result = parse_input(rows, opts);
    err = testing::internal::GetCapturedStderr();
    out = rows.str();
  }
  std::string url() const { return out.empty() ? "none" : cells(out)[9]; }
};

TEST(LargeRoad, BeginsAboveSixteenMebibytes) {
  const temp_dir dir;
  const record marker = record::url("u");
  EXPECT_FALSE(parsed(dir, limit, 0, marker, true).result);  // read whole, without a row
  EXPECT_EQ(parsed(dir, limit, 128, marker, true).err, "");
  const parsed large(dir, limit + 1, 0, marker, true);
  EXPECT_TRUE(large.result);
  EXPECT_EQ(large.url(), "none");
  std::string progress;
  for (const char* percent : {"0", "16", "33", "50", "67", "84"}) {
    progress += narrow_wipe + "percent: " + percent + "\r";
  }
  EXPECT_EQ(large.err, progress + wide_wipe);
  EXPECT_EQ(parsed(dir, limit + 1, 128, marker, false).err, "");
}

TEST(LargeRoad, ARecordAcrossEachBorder) {
  const temp_dir dir;
  const std::string url(600, 'u');
  const record placed = record::url(url);
  // The first block ends at 32768, and the second begins at 28672.
  for (const uint64_t border : {28672u, 32768u, 57344u}) {
    for (uint64_t at = border - 1152; at <= border + 128; at += 128) {
      const uint64_t block_end = at < 32768 ? 32768 : 61440;
      // A row of the earlier block stays, with what that block held of the record.
      const size_t held = std::min<uint64_t>(url.size(), block_end - at - 104);
      const parsed found(dir, limit + 1, at, placed, false);
      EXPECT_EQ(found.url().size(), held) << at;
      EXPECT_EQ(std::count(found.out.begin(), found.out.end(), '\n'), 1) << at;
    }
  }
}

TEST(LargeRoad, TheLastBlockLiesWhereTheFileEnds) {
  const temp_dir dir;
  const record placed = record::url("u");
  const uint64_t size = limit + 131;
  EXPECT_EQ(parsed(dir, size, size - 4096 + 256, placed, false).url(), "u");  // off the grid
  EXPECT_EQ(parsed(dir, size, size - 4096 + 257, placed, false).url(), "none");
  EXPECT_EQ(parsed(dir, size, limit, placed, false).url(), "u");
  EXPECT_EQ(parsed(dir, size, limit + 128 - 4096, placed, false).url(), "u");
}

}  // namespace
