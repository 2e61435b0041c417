// The container: header, directory table, HASH blocks, file kinds.
#include <gtest/gtest.h>

#include "cache/index_dat.h"
#include "tests/support/case_file.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;

// The directory names that rows with these indexes get from a file of `size` bytes.
strings attached(byte_vector bytes, size_t size, uint32_t count,
                 const std::vector<uint8_t>& indexes) {
  zk::store_le32(&bytes[index_layout::directory_count], count);
  bytes.resize(size);
  bytes.shrink_to_fit();
  const cmd_opts opts;
  record_table table(opts);
  for (const uint8_t index : indexes) table.add(table.rows.size())->directory_index = index;
  cache_container container;
  container.directories = {"used", "before"};
  attach_directories(container, table, bytes.data(), static_cast<uint32_t>(size));
  strings found;
  for (const cache_row& row : table.rows) found.emplace_back(table.directory_of(row));
  return found;
}

// Reads into a block that was used before. Nothing if it is refused.
hash_block read_block(byte_vector bytes, uint64_t offset = 0x1000) {
  bytes.shrink_to_fit();
  hash_block block;
  block.entries.resize(9);
  EXPECT_EQ(read_hash_block(block, bytes.data(), offset, bytes.size()), block.parsed);
  return block;
}

TEST(Container, HeaderAndRange) {
  byte_vector bytes = sample::header_bytes({}, 0);
  cache_container container;
  EXPECT_FALSE(read_header(container, bytes.data(), 80) || container.header[0] != 0);
  EXPECT_TRUE(read_header(container, bytes.data(), 81) && !read_header(container, nullptr, 81));
  bytes[15] = 'x';
  EXPECT_TRUE(read_header(container, bytes.data(), 81));
  bytes[14] = 'x';
  EXPECT_FALSE(read_header(container, bytes.data(), 81) || container.header[14] != 'x');
  const uint8_t* base = bytes.data();
  EXPECT_EQ(range_fits(base, base + 10, 89, 100), 10u);
  EXPECT_EQ(range_fits(base, base + 10, 90, 100), 0u);  // ends exactly at the end
  EXPECT_EQ(range_fits(base, base, 10, 100) + range_fits(base + 1, base, 10, 100) +
                range_fits(base, base + 10, 0, 0) + range_fits(base, base + 10, 101, 100) +
                range_fits(nullptr, base, 1, 100),
            0u);
}

TEST(Container, KindFromThePath) {
  check_cases("cache/kind", [](const strings& c) {
    cmd_opts opts;
    opts.file_kind = 99;
    opts.input_path = c[0];
    const bool matched = classify_path(opts);
    return joined(opts.file_kind, matched);
  });
}

TEST(Container, DirectoriesThatFit) {
  const byte_vector bytes = sample::header_bytes({"AAAAAAAA", "OLD1"}, 0);
  EXPECT_EQ(attached(bytes, 4096, 2, {0, 1, 2, 0xFE}),
            (strings{"AAAAAAAA", std::string("OLD1\0\0\0\0", 8), "", ""}));
  EXPECT_EQ(attached(bytes, 4096, 0, {0}), strings{""});
  EXPECT_EQ(attached(bytes, 0x50 + 24, 2, {0}), strings{""});  // ends exactly at the end
  EXPECT_EQ(attached(bytes, 0x50 + 25, 2, {0}), strings{"AAAAAAAA"});
  for (const uint32_t hostile : {0x15555556u, 0x15555555u, 0x80000000u, 0xFFFFFFFFu, 400u}) {
    EXPECT_EQ(attached(bytes, 4096, hostile, {0}), strings{""}) << hostile;  // some wrap in 32 bits
  }
  // With that many names even a redirect's row has one.
  EXPECT_EQ(attached(bytes, 4096, 255, {cache_row().directory_index, 0xFF})[0].size(), 8u);
  EXPECT_EQ(attached(bytes, 4096, 254, {cache_row().directory_index})[0].size(), 0u);
}

TEST(HashBlock, ListsRecordsByTheirSignature) {
  sample::index_file index;
  index.add(record::url("u")).add(record::redr("r")).add(record::leak());
  index.add(record::url("bad").put32(url_layout::url_offset, 0));  // still counts
  const byte_vector bytes = index.bytes();
  const hash_block all = read_block(bytes);
  EXPECT_EQ(all.entries.size() * 100 + all.url_records.size() * 10 + all.redr_records.size(), 431u);
  EXPECT_EQ(all.url_records[0].offset, index.offset_of(0));
  byte_vector stopped = bytes;
  zk::store_le32(&stopped[0x1008 + 0x10], hash_layout::end_key);
  EXPECT_EQ(read_block(stopped).entries.size(), 1u);
  for (const size_t from_end : {0u, 1u, 3u, 4u, 200000u}) {  // three bytes hold no signature
    byte_vector pointed = bytes;
    std::copy_n("REDR", 4, pointed.end() - 4);
    zk::store_le32(&pointed[0x1000 + hash_layout::entries + 4],
                   static_cast<uint32_t>(pointed.size() - from_end));
    EXPECT_EQ(read_block(pointed).entries.size(), from_end == 4 ? 4u : 3u) << from_end;
  }
  byte_vector endless = bytes;  // without a stop entry the list goes on to the end of the file
  for (size_t at = 0x1000 + 0x10; at < endless.size(); ++at) endless[at] = 1;
  EXPECT_TRUE(read_block(endless).parsed);
}

TEST(HashBlock, Refusals) {
  const byte_vector bytes = sample::index_file().add(record::url("u")).bytes();
  byte_vector counted = bytes, last = bytes;
  std::copy_n("HASH\0\0\0\0", 8, last.end() - 24);  // whose first entry reaches the end
  for (const uint64_t at : {uint64_t{0x1080}, bytes.size() - 23, ~uint64_t{0}})
    EXPECT_FALSE(read_block(bytes, at).parsed);
  EXPECT_FALSE(read_block({}, 0).parsed || read_block(last, bytes.size() - 24).parsed);
  struct count_case {
    uint64_t blocks;
    bool read;
  };
  for (const auto& c : std::vector<count_case>{{bytes.size() / 128, true},
                                               {bytes.size() / 128 + 1, false},
                                               {0x02000001, true}}) {  // wraps to 128 bytes
    zk::store_le32(&counted[0x1004], static_cast<uint32_t>(c.blocks));
    EXPECT_EQ(read_block(counted).parsed, c.read) << c.blocks;
  }
}

}  // namespace
