// The same bytes read whole and in the blocks of a large file. The input lies around the border of
// the first two blocks; its first byte says where.
#include "cache/block_readers.h"
#include "cache/record_scan.h"
#include "fuzz/support.h"

namespace {

constexpr uint32_t overlap = 4096;

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
  record_table pieces(opts);
  require(scan_large_file(pieces, opts), "a file is read");

  record_table whole(opts);
  byte_vector changed = bytes;
  scan_buffer(whole, opts, changed.data(), static_cast<uint32_t>(changed.size()), 0, 0);
  for (const cache_row& row : whole.rows) {
    const uint8_t* const record = &bytes[row.offset];
    const cache_row* const piece = find_row(pieces, row.offset);
    if (piece == nullptr) {
      require(!survives_blocks(row, record), "blocks lose no record");
      continue;
    }
    require(piece->signature == row.signature && piece->count == row.count &&
                piece->access == row.access,
            "a record's numbers don't depend on the blocks");
    if (row.is_redirect() || shows_count(record)) continue;
    require(row.texts.url().starts_with(piece->texts.url()) &&
                row.texts.filename().starts_with(piece->texts.filename()),
            "a block's end only cuts a text");
  }
  return 0;
}
