// The search: which records count, where they belong, and what damage does to it.
#include "cache/record_scan.h"

#include <gtest/gtest.h>

#include <random>

#include "cache/index_dat.h"
#include "cache/record_signature.h"
#include "tests/support/case_file.h"
#include "tools/sample_records.h"

namespace {

using sample::byte_vector;
using sample::record;
using offsets = std::vector<uint64_t>;

// Scans a copy that is exactly as long as the bytes. A 0 ahead says that no signature was met.
offsets offsets_in(byte_vector bytes, uint64_t base = 0) {
  bytes.shrink_to_fit();
  const cmd_opts opts;
  record_table table(opts);
  offsets found;
  if (!scan_buffer(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), base, 0))
    found.push_back(0);
  for (const cache_row& row : table.rows) found.push_back(row.offset);
  return found;
}

byte_vector with_record(const record& placed, size_t at, size_t size) {
  byte_vector bytes(at);
  const byte_vector record_bytes = placed.bytes();
  bytes.insert(bytes.end(), record_bytes.begin(), record_bytes.end());
  bytes.resize(size);
  return bytes;
}

TEST(FindNextRecord, GridAndBounds) {
  check_cases("cache/grid", [](const strings& c) {
    byte_vector bytes(number(c[2]));
    std::copy_n(c[0].data(), 4, bytes.begin() + std::stol(c[1]));
    const uint32_t found = find_next_record(bytes.data(), bytes.size());
    return found == no_record ? "none" : joined(found);
  });
  EXPECT_EQ(find_next_record(nullptr, 1024), no_record);
  EXPECT_EQ(find_next_record(byte_vector(127).data(), 127), no_record);
}

TEST(Scan, WhichRecordsCount) {
  const record good = record::url("http://a/");
  EXPECT_EQ(offsets_in(with_record(good, 0, 1024)), offsets{0});
  EXPECT_EQ(offsets_in(with_record(good, 128, 1024), 61440), offsets{61568});
  EXPECT_EQ(offsets_in(with_record(good, 896, 1024)), offsets{896});  // in the last block
  EXPECT_EQ(offsets_in(with_record(record::redr("r"), 896, 913)), offsets{896});
  EXPECT_EQ(offsets_in(with_record(record::redr("r"), 896, 912)), offsets{});
  EXPECT_EQ(offsets_in(byte_vector(128, 'U')), offsets{0});
  for (const char* kind : {"URL ", "LEAK", "REDR"}) {
    for (const uint32_t blocks : {0u, 9u, 10u, 0xFFFFFFFFu}) {
      const record made =
          record::url("http://a/").put_text(0, kind).put32(url_layout::block_count, blocks);
      byte_vector bytes = with_record(made, 256, 512);
      EXPECT_EQ(offsets_in(bytes), blocks < 10 ? offsets{256} : offsets{}) << kind << blocks;
      // Its own count decides, not the one that a neighbour corrects in the bytes.
      std::copy_n("REDR", 4, bytes.begin() + 384);
      EXPECT_EQ(offsets_in(bytes), blocks < 10 ? (offsets{256, 384}) : offsets{384})
          << kind << blocks;
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
  byte_vector poor = record::leak().filename("cut").bytes(),
              rich = record::leak().filename("whole").bytes();
  EXPECT_TRUE(add_record(table, opts, poor.data(), 128, 4096) &&
              add_record(table, opts, rich.data(), 128, 4096));
  for (const uint64_t offset : {128U, 256U, 128U})
    EXPECT_TRUE(add_record(table, opts, rich.data(), 128, offset));
  std::ostringstream rows;
  for (const cache_row& row : table.rows) rows << row.offset << row.filename() << " ";
  EXPECT_EQ(rows.str(), "128whole 256whole 4096cut ");
}

// A string of noise can be as long as the buffer: what declares too much is refused before its
// copy.
TEST(Scan, RefusedCandidatesCostNoCopies) {
  const cmd_opts opts;
  record_table table(opts);
  byte_vector noise(1024, 'x');
  std::copy_n("REDR", 4, noise.begin());
  EXPECT_FALSE(add_record(table, opts, noise.data(), 1024, 128));
  EXPECT_EQ(table.decoded_redr.url, "");
}

TEST(Damage, FlippedBitsNeverReachPastTheBytes) {
  const byte_vector bytes = sample::small_index().bytes();
  std::mt19937 random(20090721);
  for (int round = 0; round < 400; ++round) {
    byte_vector damaged = bytes;
    for (int flips = 0; flips < 40;
         ++flips) {  // in the header and the records, not the zeros between
      const size_t at = flips % 8 == 0 ? random() % 0x100 : 8192 + random() % (bytes.size() - 8192);
      damaged[at] = static_cast<uint8_t>(damaged[at] ^ 1 << random() % 8);
    }
    damaged.resize(damaged.size() - random() % 300);
    damaged.shrink_to_fit();
    const byte_vector before = damaged;
    const auto size = static_cast<uint32_t>(damaged.size());
    const cmd_opts opts;
    record_table table(opts);
    scan_buffer(table, opts, damaged.data(), size, 0, 0);
    cache_container container;
    attach_directories(container, table, damaged.data(), size);
    for (const cache_row& row : table.rows) {
      ASSERT_EQ(row.url().find(','), std::string::npos);
      ASSERT_EQ(row.http_header().find(','), std::string::npos);
    }
    for (size_t i = 0; i < before.size(); ++i) {
      ASSERT_TRUE(before[i] == damaged[i] || i % block_size - url_layout::block_count < 4)
          << "changed at " << i;
    }
  }
}

}  // namespace
