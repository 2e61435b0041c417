// The search and what brings it bytes, where random indexes can't show them.
#include <algorithm>
#include <sstream>
#include <utility>

#include "cache/cache_row.h"
#include "cache/parse_input.h"
#include "cache/record_scan.h"
#include "cache/record_signature.h"
#include "cache/record_table.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"
#include "tests/support/check_cases.h"
#include "tests/support/shown.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"
#include "uni/fileio_output.h"

namespace {

using sample::byte_vector;
using sample::record;

TEST(Scan, TellsWhatItMet) {
  const cmd_opts opts;
  record_table table(nullptr);
  byte_vector noise(1024, 'x'), good = record::redr("r").bytes();
  EXPECT_FALSE(scan_buffer(table, opts, noise.data(), 1024, 0, 0));
  std::copy_n("REDR", 4, &noise[128]);
  EXPECT_TRUE(scan_buffer(table, opts, noise.data(), 1024, 0, 0));
  EXPECT_FALSE(add_record(table, opts, &noise[128], 896, 128));
  EXPECT_FALSE(add_record(table, opts, good.data(), 16, 128));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(add_record(table, opts, good.data(), 17, 128));
  for (const auto& [size, found] : {std::pair{3u, no_record}, {132u, no_record}, {133u, 128u}}) {
    EXPECT_EQ(find_next_record(noise.data(), size), found) << size;
  }
  EXPECT_EQ(find_next_record(nullptr, 1024), no_record);
  url_record none;
  EXPECT_FALSE(decode_url_record(none, nullptr, 0, 200, 1));
  // A short read leaves what a search has left, so that must be the same where the row is known.
  byte_vector bytes(128), url = record::url("u").blocks(2).bytes();
  bytes.insert(bytes.end(), url.begin(), url.end());
  std::copy_n("REDR", 4, &bytes[256]);
  byte_vector again = bytes;
  for (byte_vector* each : {&bytes, &again}) scan_buffer(table, opts, each->data(), 384, 512, 0);
  EXPECT_EQ(joined(bytes[132] == 1, again == bytes), "true|true");
}

// A chunk that begins at 256 is searched from 384 on.
TEST(Table, GivesWhatIsFinalAndNoMore) {
  const cmd_opts opts;
  std::string given;
  record_table table([&](const cache_row& row) { given += std::string(row.url) + " "; });
  const auto add = [&](uint64_t offset) {
    byte_vector bytes = record::redr(std::to_string(offset)).bytes();
    add_record(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), offset);
  };
  for (const uint64_t offset : {385U, 383U, 384U}) add(offset);
  table.next_chunk_at(256);
  for (const uint64_t offset : {386U, 387U}) {
    table.end_chunk();
    EXPECT_EQ(given, "383 ");
    add(offset);
  }
  table.next_chunk_at(512);
  for (const uint64_t offset : {384U, 639U, 640U}) add(offset);
  EXPECT_EQ(given, "383 384 385 386 387 639 ");
  table.end_input();
  EXPECT_EQ(given, "383 384 385 386 387 639 640 ");
}

CASES(cache, input) {
  static const temp_dir dir;
  static cmd_opts opts;  // which keeps what crosses from one input to the next
  static const bool written =
      !dir.write("f", sample::index_file().add(record::redr("r")).bytes()).empty();
  EXPECT_TRUE(written);
  opts.carve_columns = c["source"] == "file";
  opts.input_path = opts.carve_columns ? dir.path(c["name"]) : "";
  opts.partition_path = opts.carve_columns ? "" : dir.path(c["name"]);
  std::filesystem::resize_file(dir.path("f"), number(c["size"]));
  if (c["quiet"] == "yes") {
    opts.show_progress = false;
    opts.write_header = false;
    opts.header_pending = true;
  }
  std::ostringstream rows;
  testing::internal::CaptureStderr();
  uni::stream_sink sink(rows);
  const bool result = parse_input(sink, opts);
  const std::string seen = joined(result, testing::internal::GetCapturedStderr(), rows.str());
  return replaced(in_words(seen), dir.path() + "/", "");
}

}  // namespace
