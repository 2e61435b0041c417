// The container: header, directory table, HASH blocks, file kinds.
#include <gtest/gtest.h>

#include "cache/index_dat.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;

TEST(Container, Header) {
  const byte_vector bytes = sample::header_bytes({}, 0);
  cache_container container;
  EXPECT_FALSE(read_header(container, bytes.data(), 80));
  EXPECT_EQ(container.header[0], 0);
  EXPECT_TRUE(read_header(container, bytes.data(), 81));
  EXPECT_FALSE(read_header(container, nullptr, 81));
  byte_vector wrong = bytes;
  wrong[14] = 'x';
  EXPECT_FALSE(read_header(container, wrong.data(), 81));
  EXPECT_EQ(container.header[14], 'x');
  wrong = bytes;
  wrong[15] = 'x';
  EXPECT_TRUE(read_header(container, wrong.data(), 81));
}

TEST(Container, RangeFits) {
  const byte_vector bytes(100);
  const uint8_t* base = bytes.data();
  EXPECT_EQ(range_fits(base, base + 10, 89, 100), 10u);
  EXPECT_EQ(range_fits(base, base + 10, 90, 100), 0u);  // ends exactly at the end
  EXPECT_EQ(range_fits(base, base, 10, 100), 0u);
  EXPECT_EQ(range_fits(base + 1, base, 10, 100), 0u);
  EXPECT_EQ(range_fits(base, base + 10, 101, 100), 0u);
  EXPECT_EQ(range_fits(nullptr, base, 1, 100) + range_fits(base, nullptr, 1, 100), 0u);
  EXPECT_EQ(range_fits(base, base + 10, 0, 0), 0u);
}

TEST(Container, KindFromThePath) {
  const struct {
    const char* path;
    uint32_t kind;
    bool matched;
  } cases[] = {
      {"/History/MSHist012/index.dat", 3, true},
      {"/History.IE5/index.dat", 2, true},
      {"/Temporary Internet Files/index.dat", 4, true},
      {"/Cookies/index.dat", 5, true},
      {"/Temp/index.dat", 6, true},
      {"/temp/history/index.dat", 1, false},
      {"/Temp/Cookies", 5, true},
      {"/x", 1, false},
  };
  for (const auto& c : cases) {
    cmd_opts opts;
    opts.file_kind = 99;
    opts.input_path = c.path;
    EXPECT_EQ(classify_path(opts), c.matched) << c.path;
    EXPECT_EQ(opts.file_kind, c.kind) << c.path;
  }
  cmd_opts opts;
  opts.file_kind = 99;
  EXPECT_FALSE(classify_path(opts));
  EXPECT_EQ(opts.file_kind, 99u);
}

// The directory names that rows with these indexes get from a file of `size` bytes.
std::vector<std::string> attached(byte_vector bytes, size_t size, uint32_t count,
                                  const std::vector<uint8_t>& indexes) {
  zk::store_le32(&bytes[index_layout::directory_count], count);
  bytes.resize(size);
  bytes.shrink_to_fit();
  const cmd_opts opts;
  record_table table(opts);
  for (const uint8_t index : indexes) table.rows[table.rows.size()].directory_index = index;
  cache_container container;
  attach_directories(container, table, bytes.data(), static_cast<uint32_t>(size));
  std::vector<std::string> names;
  for (const auto& [offset, row] : table.rows) names.push_back(row.directory);
  return names;
}

TEST(Container, DirectoriesThatFit) {
  using names = std::vector<std::string>;
  const std::string padded("OLD1\0\0\0\0", 8);
  const byte_vector bytes = sample::header_bytes({"AAAAAAAA", "OLD1"}, 0);
  EXPECT_EQ(attached(bytes, 4096, 2, {0, 1, 2, 0xFE}), (names{"AAAAAAAA", padded, "", ""}));
  EXPECT_EQ(attached(bytes, 4096, 0, {0}), names{""});
  EXPECT_EQ(attached(bytes, 0x50 + 24, 2, {0}), names{""});  // ends exactly at the end
  EXPECT_EQ(attached(bytes, 0x50 + 25, 2, {0}), names{"AAAAAAAA"});
  for (const uint32_t hostile : {0x15555556u, 0x15555555u, 0x80000000u, 0xFFFFFFFFu, 400u}) {
    EXPECT_EQ(attached(bytes, 4096, hostile, {0}), names{""}) << hostile;  // some wrap in 32 bits
  }
  // With that many names even a redirect's index is one.
  EXPECT_EQ(attached(bytes, 4096, 255, {0xFE})[0].size(), 8u);
}

struct listed {
  bool read;
  hash_block block;
};

listed read_block(byte_vector bytes, uint64_t offset = 0x1000) {
  bytes.shrink_to_fit();
  listed result;
  result.read = read_hash_block(result.block, bytes.data(), offset, bytes.size());
  return result;
}

TEST(HashBlock, ListsRecordsByTheirSignature) {
  sample::index_file index;
  index.add(record::url("u")).add(record::redr("r")).add(record::leak());
  index.add(record::url("bad").put32(url_layout::url_offset, 0));  // still counts
  byte_vector bytes = index.bytes();
  const listed all = read_block(bytes);
  EXPECT_TRUE(all.read && all.block.parsed);
  EXPECT_EQ(all.block.entries.size(), 4u);
  EXPECT_EQ(all.block.url_records.size(), 3u);
  EXPECT_EQ(all.block.redr_records.size(), 1u);
  EXPECT_EQ(all.block.url_records[0].offset, index.offset_of(0));

  // Offsets that point nowhere, or to the last three bytes, are passed over.
  for (const size_t from_end : {0u, 1u, 3u, 200000u}) {
    byte_vector pointed = bytes;
    const auto target = static_cast<uint32_t>(pointed.size() - from_end);
    zk::store_le32(&pointed[0x1000 + hash_layout::entries + 4], target);
    EXPECT_EQ(read_block(pointed).block.entries.size(), 3u) << from_end;
  }
  // Without a stop entry the list goes on past the block, to the end of the file.
  byte_vector endless = bytes;
  for (size_t at = 0x1000 + 0x10; at < endless.size(); ++at) endless[at] = 1;
  EXPECT_TRUE(read_block(endless).read);
}

TEST(HashBlock, Refusals) {
  const byte_vector bytes = sample::index_file().add(record::url("u")).bytes();
  EXPECT_FALSE(read_block(bytes, 0x1080).read);
  EXPECT_FALSE(read_block(bytes, bytes.size() - 23).read);
  EXPECT_FALSE(read_block(bytes, ~uint64_t{0}).read);
  EXPECT_FALSE(read_block({}, 0).read);
  byte_vector counted = bytes;
  zk::store_le32(&counted[0x1004], static_cast<uint32_t>(bytes.size() / 128 + 1));
  EXPECT_FALSE(read_block(counted).read);
  zk::store_le32(&counted[0x1004], 0x02000001);  // wraps to 128 bytes
  EXPECT_TRUE(read_block(counted).read);
}

}  // namespace
