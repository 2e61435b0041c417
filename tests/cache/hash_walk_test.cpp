// The walk by structure: chain, gaps, and what marks a span.
#include "cache/hash_walk.h"

#include <gtest/gtest.h>

#include "cache/record_signature.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;

TEST(HashWalk, ChainGapsAndCircles) {
  sample::index_file index;
  index.directories({"DIR1"}).add(record::url("a")).add(record::redr("b"));
  byte_vector bytes = index.bytes();
  const auto end = static_cast<uint32_t>(bytes.size());
  // Behind the two: room for a gap, then a second HASH block that lists one more record.
  const byte_vector in_gap = record::redr("gap").bytes(), last = record::url("c").bytes();
  bytes.resize(end + 2 * block_size + 0x8000);
  const uint32_t second = end + 2 * block_size, third = second + 0x1000;
  std::copy(in_gap.begin(), in_gap.end(), bytes.begin() + end + block_size);
  const byte_vector block =
      sample::hash_block_bytes({third, index.offset_of(0)}, 0x1000);  // and back to the first
  std::copy(block.begin(), block.end(), bytes.begin() + second);
  std::copy(last.begin(), last.end(), bytes.begin() + third);
  zk::store_le32(&bytes[0x1000 + hash_layout::next], second);
  cache_container container;
  EXPECT_TRUE(walk_hash_chain(container, bytes.data(), static_cast<uint32_t>(bytes.size()), false));
  EXPECT_EQ(container.hash_blocks.size(), 2u);
  EXPECT_EQ(container.directories, std::vector<std::string>{std::string("DIR1\0\0\0\0", 8)});
  ASSERT_EQ(container.occupied.size(), 3u);
  EXPECT_EQ(container.occupied[index.offset_of(0)].blocks, (std::vector<uint32_t>{0, 0, 1}));
  EXPECT_EQ(container.occupied[index.offset_of(1)].redr_index, 0);
  EXPECT_EQ(container.occupied[third].url_index, 0);
  // A gap's records pass only where twice their offset fits: never this far into a file.
  EXPECT_TRUE(walk_hash_chain(container, bytes.data(), static_cast<uint32_t>(bytes.size()), true));
  EXPECT_EQ(container.gap_redrs.size() + container.gap_urls.size(), 0u);
  bytes[0] = 'x';
  EXPECT_FALSE(walk_hash_chain(container, bytes.data(), static_cast<uint32_t>(bytes.size()), true));
}

TEST(HashWalk, ARecordInAGap) {
  // Known records early in the file, and one between them whose offset is less than half the
  // next's.
  byte_vector bytes = sample::header_bytes({}, 0);
  bytes.resize(0x3000);
  const auto place = [&](const record& made, uint32_t at) {
    const byte_vector b = made.bytes();
    std::copy(b.begin(), b.end(), bytes.begin() + at);
  };
  place(record::redr("first"), 0x100), place(record::redr("gap"), 0x200),
      place(record::url("gap"), 0x300), place(record::redr("next"), 0x1F00);
  const byte_vector block = sample::hash_block_bytes({0x100, 0x1F00}, 0);
  zk::store_le32(&bytes[index_layout::first_hash], 0x2000);
  std::copy(block.begin(), block.end(), bytes.begin() + 0x2000);
  cache_container container;
  EXPECT_TRUE(walk_hash_chain(container, bytes.data(), static_cast<uint32_t>(bytes.size()), true));
  ASSERT_EQ(container.gap_redrs.size() * 10 + container.gap_urls.size(), 11u);
  const hash_range& range = container.occupied[0x300];
  EXPECT_TRUE(range.from_gap && range.url_index == 0 && container.gap_urls[0].in_gap);
  EXPECT_EQ(range.length, 128u);
  EXPECT_EQ(range.blocks, std::vector<uint32_t>{0xFFFFFFFF});
}

}  // namespace
