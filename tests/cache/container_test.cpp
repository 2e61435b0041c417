// The container: header, directory table, HASH blocks and the walk along them, file kinds. What is
// read into was used by the case before.
#include <ios>
#include <sstream>

#include "cache/cache_row.h"
#include "cache/hash_walk.h"
#include "cache/index_dat.h"
#include "cache/redr_record.h"
#include "cache/row_writer.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"
#include "tests/support/check_cases.h"
#include "tools/index_text_builder.h"
#include "uni/fileio_output.h"

namespace {

CASES(cache, header) {
  index_text_builder bytes(c.inputs);
  cache_container container;
  const bool read = read_header(container, bytes.data(), bytes.size());
  return joined(read, reinterpret_cast<const char*>(container.header.data()));
}

TEST(Container, NullIsNothing) {
  cache_container container;
  hash_block block;
  EXPECT_FALSE(read_header(container, nullptr, 81));
  EXPECT_EQ(range_fits(nullptr, container.header.data(), 1, ~uint64_t{0}), 0u);
  EXPECT_FALSE(read_hash_block(block, nullptr, 0, 4096));
}

CASES(cache, kind) {
  cmd_opts opts;
  opts.file_kind = 99;
  opts.input_path = c[0];
  const bool matched = classify_path(opts);
  return joined(opts.file_kind, matched);
}

CASES(cache, names) {
  static cache_container container;
  strings parts = {"text Client UrlCache", "0x50:FIRST",     "0x5C:SECOND",
                   "0xC38:NAME 254",       "0xC44:NAME 255", "size 4096"};
  parts.insert(parts.end(), c.inputs.begin(), c.inputs.end());
  index_text_builder bytes(parts);
  strings directories;
  std::string found =
      joined(attach_directories(container, directories, bytes.data(), bytes.size()));
  // A REDR record's row keeps the index that it has from the start.
  cache_row row;
  std::ostringstream out;
  uni::stream_sink sink(out);
  const cmd_opts opts;
  row_writer writer(sink, opts, directories);
  for (const uint8_t index : std::vector<uint8_t>{row.directory_index, 0, 1, 254, 255}) {
    row.directory_index = index;
    out.str("");
    writer.write_row(row, 1);
    found += "|" + cells(out.str())[13];
  }
  return found;
}

CASES(cache, hash_block) {
  static hash_block block;
  index_text_builder bytes(c.inputs);
  const bool read = read_hash_block(block, bytes.data(), number(c["at"]), bytes.size());
  EXPECT_EQ(read, block.parsed);
  std::ostringstream found;
  found << std::boolalpha << read << std::hex;
  for (const hash_entry& entry : block.entries) found << " " << entry.record_offset;
  for (const url_record& record : block.url_records) found << " url " << record.offset;
  for (const redr_record& record : block.redr_records) found << " redr " << record.offset;
  return found.str();
}

CASES(cache, walk) {
  static cache_container container;
  index_text_builder bytes(c.inputs);
  std::ostringstream found;
  found << std::boolalpha
        << walk_hash_chain(container, bytes.data(), bytes.size(), c["gaps"] == "yes") << " "
        << container.hash_blocks.size();
  for (const std::string& name : container.directories) found << " " << name;
  for (const auto& [offset, range] : container.occupied) {
    found << ", " << std::hex << offset << "+" << range.length << std::dec << " " << range.url_index
          << "/" << range.redr_index << (range.from_gap ? " gap" : "");
    for (const uint32_t index : range.blocks) found << " " << static_cast<int32_t>(index);
  }
  for (const url_record& record : container.gap_urls) {
    found << " " << (record.in_gap ? record.url : "?");
  }
  for (const redr_record& record : container.gap_redrs) {
    found << " " << (record.in_gap ? record.url : "?");
  }
  return found.str();
}

}  // namespace
