// What parse_input makes of an input, and the large road: where it begins, its progress.
#include <gtest/gtest.h>

#include <sstream>

#include "cache/parse_input.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::record;

constexpr uint64_t limit = 0x1000000;

struct parsed {
  bool result = false;
  std::string out, err;

  parsed(cmd_opts& opts, const std::string& path) {
    opts.input_path = path;
    std::ostringstream rows;
    testing::internal::CaptureStderr();
    result = parse_input(rows, opts);
    err = testing::internal::GetCapturedStderr();
    out = rows.str();
  }
};

// A file of `size` bytes, zeros but for a record at `at`, parsed without its header line.
parsed with_record(const temp_dir& dir, uint64_t size, uint64_t at, bool progress) {
  sample::byte_vector bytes(at);
  for (const uint8_t byte : record::url("u").bytes()) bytes.push_back(byte);
  const std::string path = dir.write("f", bytes);
  std::filesystem::resize_file(path, size);
  cmd_opts opts;
  opts.any_signature = true;
  opts.header_pending = false;
  opts.show_progress = progress;
  return parsed(opts, path);
}

TEST(ParseInput, HeaderLineSignatureAndForms) {
  const temp_dir dir;
  const auto index = sample::index_file().add(record::redr("r")).bytes();
  auto foreign = index, refused = index;
  foreign[0] = 'x';
  refused[sample::index_file::header_size + 0x1000 + 4] = 10;
  const std::string good = dir.write("good", index), other = dir.write("other", foreign);
  cmd_opts opts;
  const parsed untested(opts, other);  // a signature is asked for until one was right
  EXPECT_TRUE(!untested.result && untested.out == header_line && !opts.header_pending);
  EXPECT_EQ(parsed(opts, good).out, ",,,,,,,,REDR,r,,,0,,0,," + good + "\n");
  EXPECT_TRUE(parsed(opts, other).result);
  EXPECT_FALSE(parsed(opts, dir.write("refused", refused)).result);  // a signature, but no row
  opts.header_pending = true;
  EXPECT_EQ(parsed(opts, dir.write("empty", "")).out, "");
  EXPECT_TRUE(opts.header_pending);
  opts.carve_columns = true;
  EXPECT_TRUE(
      parsed(opts, good).out.ends_with("\n1,0x00002000,,,,,,,,,REDR,r,,,0,,0,," + good + "\n"));
  opts.header_pending = true;
  opts.write_header = false;
  EXPECT_EQ(parsed(opts, good).out, "\n");
}

TEST(LargeRoad, BeginsAboveSixteenMebibytes) {
  const temp_dir dir;
  EXPECT_FALSE(with_record(dir, limit, 0, true).result);  // read whole, without a row
  EXPECT_EQ(with_record(dir, limit, 128, true).err, "");
  const parsed large = with_record(dir, limit + 1, 0, true);
  EXPECT_TRUE(large.result && large.out.empty());
  std::string progress;
  for (const char* percent : {"0", "16", "33", "50", "67", "84"})
    progress += narrow_wipe + "percent: " + percent + "\r";
  EXPECT_EQ(large.err, progress + wide_wipe);
  EXPECT_EQ(with_record(dir, limit + 1, 128, false).err, "");
}

}  // namespace
