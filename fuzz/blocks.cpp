// The same bytes read whole and in the blocks of a large file. The input lies around the border of
// the first two blocks; its first byte says where.
#include <map>
#include <string>

#include "cache/chunk_readers.h"
#include "cache/record_scan.h"
#include "cache/url_record.h"
#include "fuzz/support.h"
#include "opts/cmd_opts.h"

namespace {

constexpr uint32_t overlap = 4096;

struct found_row {
  cache_row numbers;
  std::string url;
  std::string filename;

  found_row(const cache_row& row) : numbers(row), url(row.url), filename(row.filename) {}
};

// Whether a record that counts in a whole file is sure to count in blocks: what decides on it lies
// within the overlap of its start.
bool survives_blocks(const cache_row& row, const uint8_t* record) {
  if (row.is_leak() || row.is_redirect()) return true;
  return zk::load_le32(record + url_layout::url_offset) < overlap &&
         zk::load_le32(record + url_layout::header_length) != 0;
}

// Whether a text of the record begins within its block count, so that it shows what the search
// wrote there.
bool shows_count(const uint8_t* record) {
  const auto begins_there = [&](uint32_t field) {
    const uint32_t at = zk::load_le32(record + field);
    return at != 0 && at < 8;
  };
  return begins_there(url_layout::url_offset) || begins_there(url_layout::filename_offset);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  byte_vector bytes(24576 + data[0] % 80 * 128);
  bytes.insert(bytes.end(), data + 1, data + size);
  static const memory_file file;
  file.fill(bytes.data(), bytes.size());
  cmd_opts opts;
  opts.input_path = file.path();
  opts.show_progress = false;
  std::map<uint64_t, found_row> pieces;
  record_table window([&](const cache_row& row) { pieces.emplace(row.offset, row); });
  require(scan_large_file(window, opts), "a file is read");
  window.end_input();

  byte_vector changed = bytes;
  record_table whole([&](const cache_row& row) {
    const uint8_t* const record = &bytes[row.offset];
    const auto piece = pieces.find(row.offset);
    if (piece == pieces.end()) {
      require(!survives_blocks(row, record), "blocks lose no record");
      return;
    }
    const auto& [numbers, url, filename] = piece->second;
    require(numbers.signature == row.signature && numbers.count == row.count &&
                numbers.access == row.access,
            "a record's numbers don't depend on the blocks");
    if (row.is_redirect() || shows_count(record)) return;
    require(row.url.starts_with(url) && row.filename.starts_with(filename),
            "a block's end only cuts a text");
  });
  whole.keep_all();
  scan_buffer(whole, opts, changed.data(), static_cast<uint32_t>(changed.size()), 0, 0);
  whole.end_input();
  return 0;
}
