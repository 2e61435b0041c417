// What parse_input makes of an input, and the large road: where it begins, its borders, its
// progress.
#include <gtest/gtest.h>

#include <sstream>

#include "cache/parse_input.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

// clang-format off

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
  std::string url() const { return out.empty() ? "none" : cells(out)[9]; }
};

// A file of `size` bytes, zeros but for a record at `at`, parsed without its header line.
parsed with_record(const temp_dir& dir, uint64_t size, uint64_t at, const record& placed, bool progress = false) {
  const std::string path = dir.write("f", "");
  std::filesystem::resize_file(path, size);
  const auto bytes = placed.bytes();
  std::fstream(path, std::ios::in | std::ios::out | std::ios::binary).seekp(static_cast<std::streamoff>(at))
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(std::min<uint64_t>(bytes.size(), size - at)));
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
  EXPECT_TRUE(parsed(opts, good).out.ends_with("\n1,0x00002000,,,,,,,,,REDR,r,,,0,,0,," + good + "\n"));
  opts.header_pending = true;
  opts.write_header = false;
  EXPECT_EQ(parsed(opts, good).out, "\n");
}

TEST(LargeRoad, BeginsAboveSixteenMebibytes) {
  const temp_dir dir;
  const record marker = record::url("u");
  EXPECT_FALSE(with_record(dir, limit, 0, marker, true).result);  // read whole, without a row
  EXPECT_EQ(with_record(dir, limit, 128, marker, true).err, "");
  const parsed large = with_record(dir, limit + 1, 0, marker, true);
  EXPECT_TRUE(large.result && large.out.empty());
  std::string progress;
  for (const char* percent : {"0", "16", "33", "50", "67", "84"})
    progress += narrow_wipe + "percent: " + percent + "\r";
  EXPECT_EQ(large.err, progress + wide_wipe);
  EXPECT_EQ(with_record(dir, limit + 1, 128, marker).err, "");
}

TEST(LargeRoad, ARecordAcrossEachBorder) {
  const temp_dir dir;
  const record placed = record::url(std::string(600, 'u'));
  for (const uint64_t border : {28672u, 32768u, 57344u}) {  // where blocks begin and end
    for (uint64_t at = border - 1152; at <= border + 128; at += 128) {
      // A row of the earlier block stays, with what that block held of the record.
      const parsed found = with_record(dir, limit + 1, at, placed);
      EXPECT_EQ(found.url().size(), std::min<uint64_t>(600, (at < 32768 ? 32768 : 61440) - at - 104)) << at;
      EXPECT_EQ(std::count(found.out.begin(), found.out.end(), '\n'), 1) << at;
    }
  }
}

TEST(LargeRoad, TheLastBlockLiesWhereTheFileEnds) {
  const temp_dir dir;
  const uint64_t size = limit + 131;
  struct tail_case { uint64_t at; const char* url; };
  for (const auto& c : std::vector<tail_case>{{size - 4096 + 256, "u"}, {size - 4096 + 257, "none"},  // off the grid
                                              {limit, "u"}, {limit + 128 - 4096, "u"}}) {
    EXPECT_EQ(with_record(dir, size, c.at, record::url("u")).url(), c.url) << c.at;
  }
}

}  // namespace
