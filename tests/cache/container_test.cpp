// The container: header, directory table, HASH blocks and the walk along them, file kinds. What is
// read into was used by the case before.
#include <gtest/gtest.h>

#include <sstream>

#include "cache/hash_walk.h"
#include "tests/cache/index_text.h"

namespace {

TEST(Container, HeaderAndRange) {
  check_cases("cache/header", [](const strings& c) {
    index_text bytes(c);
    cache_container container;
    const bool read = read_header(container, bytes.data(), bytes.size());
    return joined(read, reinterpret_cast<const char*>(container.header.data()));
  });
  cache_container container;
  EXPECT_FALSE(read_header(container, nullptr, 81));
  check_cases("cache/fits", [](const strings& c) {
    static const uint8_t bytes[101] = {}, *const base = bytes + 1;
    return joined(range_fits(base, base + std::stoi(c[0]), number(c[1]), number(c[2])));
  });
  EXPECT_EQ(range_fits(nullptr, container.header.data(), 1, ~uint64_t{0}), 0u);
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

TEST(Container, NamesOfDirectories) {
  cache_container container;
  check_cases("cache/names", [&](const strings& c) {
    strings parts = {"text Client UrlCache", "0x50:FIRST", "0x5C:SECOND", "0xC38:NAME 254"};
    parts.insert(parts.end(), {"0xC44:NAME 255", "size 4096"});
    parts.insert(parts.end(), c.begin(), c.end());
    index_text bytes(parts);
    record_table table{cmd_opts()};
    std::string found = joined(attach_directories(container, table, bytes.data(), bytes.size()));
    // A REDR record's row keeps the index that it has from the start.
    cache_row row;
    for (const uint8_t index : std::vector<uint8_t>{row.directory_index, 0, 1, 254, 255}) {
      row.directory_index = index;
      found += "|" + std::string(table.directory_of(row));
    }
    return found;
  });
}

TEST(Container, HashBlock) {
  hash_block block;
  check_cases("cache/hash_block", [&](const strings& c) {
    index_text bytes(c, 1);
    const bool read = read_hash_block(block, bytes.data(), number(c[0]), bytes.size());
    EXPECT_EQ(read, block.parsed);
    std::ostringstream found;
    found << std::boolalpha << read << std::hex;
    for (const hash_entry& entry : block.entries) found << " " << entry.record_offset;
    for (const url_record& record : block.url_records) found << " url " << record.offset;
    for (const redr_record& record : block.redr_records) found << " redr " << record.offset;
    return found.str();
  });
  EXPECT_FALSE(read_hash_block(block, nullptr, 0, 4096));
}

TEST(Container, Walk) {
  cache_container container;
  check_cases("cache/walk", [&](const strings& c) {
    index_text bytes(c, 1);
    std::ostringstream found;
    found << std::boolalpha
          << walk_hash_chain(container, bytes.data(), bytes.size(), c[0] == "gaps") << " "
          << container.hash_blocks.size();
    for (const std::string& name : container.directories) found << " " << name;
    for (const auto& [offset, range] : container.occupied) {
      found << ", " << std::hex << offset << "+" << range.length << std::dec << " "
            << range.url_index << "/" << range.redr_index << (range.from_gap ? " gap" : "");
      for (const uint32_t index : range.blocks) found << " " << static_cast<int32_t>(index);
    }
    for (const url_record& record : container.gap_urls)
      found << " " << (record.in_gap ? record.url : "?");
    for (const redr_record& record : container.gap_redrs)
      found << " " << (record.in_gap ? record.url : "?");
    return found.str();
  });
}

}  // namespace
