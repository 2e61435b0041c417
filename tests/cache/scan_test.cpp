// The search: which records count, where they belong, and what damage does to it.
#include "cache/record_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "cache/index_dat.h"
#include "cache/parse_input.h"
#include "cache/record_signature.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"
#include "tools/sample_records.h"

namespace {

using sample::byte_vector;
using sample::record;

// Scans a copy that is exactly as long as the bytes.
std::vector<uint64_t> offsets_in(byte_vector bytes, uint64_t base = 0) {
  bytes.shrink_to_fit();
  const cmd_opts opts;
  record_table table(opts);
  scan_buffer(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), base, 0);
  std::vector<uint64_t> offsets;
  for (const auto& [offset, row] : table.rows) {
    EXPECT_EQ(row.offset, offset);
    offsets.push_back(offset);
  }
  return offsets;
}

byte_vector with_record(const record& placed, size_t at, size_t size) {
  byte_vector bytes(size);
  const byte_vector record_bytes = placed.bytes();
  for (size_t i = 0; i < record_bytes.size() && at + i < size; ++i) bytes[at + i] = record_bytes[i];
  return bytes;
}

using offsets = std::vector<uint64_t>;

TEST(FindNextRecord, GridAndBounds) {
  const struct {
    size_t at, size;
    uint32_t expected;
  } cases[] = {
      {0, 1024, no_record},  {64, 1024, no_record}, {128, 1024, 128},       {512, 1024, 512},
      {128, 132, no_record}, {128, 133, 128},       {129, 1024, no_record},
  };
  for (const auto& c : cases) {
    for (const char* signature : {"URL ", "LEAK", "REDR"}) {
      byte_vector bytes(c.size);
      std::copy_n(signature, 4, bytes.begin() + static_cast<ptrdiff_t>(c.at));
      EXPECT_EQ(find_next_record(bytes.data(), bytes.size()), c.expected) << c.at << ' ' << c.size;
    }
  }
  EXPECT_EQ(find_next_record(nullptr, 1024), no_record);
  const byte_vector small(127);
  EXPECT_EQ(find_next_record(small.data(), small.size()), no_record);
}

TEST(Scan, WhichRecordsCount) {
  const record good = record::url("http://a/");
  EXPECT_EQ(offsets_in(with_record(good, 0, 1024)), offsets{});
  EXPECT_EQ(offsets_in(with_record(good, 128, 1024), 61440), offsets{61568});
  EXPECT_EQ(offsets_in(with_record(good, 896, 1024)), offsets{896});  // in the last block
  EXPECT_EQ(offsets_in(with_record(record::redr("r"), 896, 913)), offsets{896});
  EXPECT_EQ(offsets_in(with_record(record::redr("r"), 896, 912)), offsets{});
  EXPECT_EQ(offsets_in(byte_vector(128, 'U')), offsets{});
  for (const char* kind : {"URL ", "LEAK", "REDR"}) {
    for (const uint32_t blocks : {0u, 9u, 10u, 0xFFFFFFFFu}) {
      const record made =
          record::url("http://a/").put_text(0, kind).put32(url_layout::block_count, blocks);
      const offsets expected = blocks < 10 ? offsets{256} : offsets{};
      EXPECT_EQ(offsets_in(with_record(made, 256, 512)), expected) << kind << blocks;
    }
  }
  // A record inside another's string area counts as well; a refused one costs itself alone.
  byte_vector nested = with_record(record::url(std::string(300, 'u')), 128, 1024);
  const byte_vector inner = record::redr("inner").bytes();
  std::copy(inner.begin(), inner.end(), nested.begin() + 256);
  EXPECT_EQ(offsets_in(nested), (offsets{128, 256}));
  zk::store_le32(&nested[128 + url_layout::url_offset], 0);
  EXPECT_EQ(offsets_in(nested), offsets{256});
}

TEST(Scan, TheFirstRowUnderAnOffsetStays) {
  const cmd_opts opts;
  record_table table(opts);
  byte_vector poor = record::leak().filename("cut").bytes();
  byte_vector rich = record::leak().filename("whole").bytes();
  EXPECT_TRUE(add_record(table, opts, poor.data(), 128, 4096));
  EXPECT_TRUE(add_record(table, opts, rich.data(), 128, 4096));
  EXPECT_TRUE(add_record(table, opts, rich.data(), 128, 128));
  ASSERT_EQ(table.rows.size(), 2u);
  EXPECT_EQ(table.rows.begin()->second.filename, "whole");
  EXPECT_EQ(table.rows.at(4096).filename, "cut");
}

// What a run on these bytes prints.
std::string parsed(const temp_dir& dir, const byte_vector& bytes, bool& result) {
  cmd_opts opts;
  opts.any_signature = true;
  opts.input_path = dir.write("index.dat", bytes);
  opts.show_progress = false;
  std::ostringstream out;
  testing::internal::CaptureStdout();
  result = parse_input(out, opts);
  testing::internal::GetCapturedStdout();
  return out.str();
}

TEST(Damage, AnyCutLosesOnlyWhatItCuts) {
  const temp_dir dir;
  const sample::index_file index = sample::small_index();
  const byte_vector bytes = index.bytes();
  bool result = false;
  std::string before;
  // The first 5000 bytes hold no record, so a few cuts there serve for all.
  for (size_t size = 0; size <= bytes.size(); size += size < 8000 ? 1999 : 1) {
    byte_vector cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
    const std::string text = parsed(dir, cut, result);
    const auto rows = std::count(text.begin(), text.end(), '\n') - (size > 0);
    EXPECT_EQ(result, rows > 0) << size;
    int fully_inside = 0;
    for (size_t n = 0; n + 1 < 9; ++n) fully_inside += index.offset_of(n + 1) <= size;
    ASSERT_GE(rows, fully_inside) << size;
    ASSERT_LE(rows, 9) << size;
  }
}

TEST(Damage, FlippedBitsNeverReachPastTheBytes) {
  const temp_dir dir;
  const byte_vector bytes = sample::small_index().bytes();
  std::mt19937 random(20090721);
  for (int round = 0; round < 400; ++round) {
    byte_vector damaged = bytes;
    for (int flips = 0; flips < 40; ++flips) {
      // Header and records, not the zeros between them.
      const size_t span = flips % 8 == 0 ? 0x100 : bytes.size() - 8192;
      const size_t at = (flips % 8 == 0 ? 0 : 8192) + random() % span;
      damaged[at] = static_cast<uint8_t>(damaged[at] ^ 1 << random() % 8);
    }
    damaged.resize(damaged.size() - random() % 300);
    const cmd_opts opts;
    record_table table(opts);
    damaged.shrink_to_fit();
    const byte_vector before = damaged;
    const auto size = static_cast<uint32_t>(damaged.size());
    scan_buffer(table, opts, damaged.data(), size, 0, 0);
    cache_container container;
    attach_directories(container, table, damaged.data(), size);
    for (const auto& [offset, row] : table.rows) {
      ASSERT_EQ(row.url.find(row.is_redirect ? ',' : '\n'), std::string::npos);
      ASSERT_EQ(row.http_header.find(','), std::string::npos);
    }
    for (size_t i = 0; i < before.size(); ++i) {
      if (before[i] == damaged[i]) continue;
      ASSERT_LT(i % block_size - url_layout::block_count, 4u) << "changed at " << i;
    }
  }
}

}  // namespace
