#include "cache/block_readers.h"

#include <algorithm>
#include <vector>

#include "media/file_blocks.h"
#include "media/raw_disk_io.h"
#include "uni/console.h"
#include "uni/fileio.h"

namespace {

constexpr uint32_t file_block_size = 32768;
constexpr uint32_t block_overlap = 4096;
constexpr uint32_t raw_read_size = 65536;
// Where a header says that a disk is larger, no more of it is searched: it would take for ever.
constexpr int64_t largest_disk = 1LL << 46;
// A block's position in bytes is held against it: of a file every 99th block shows progress, of a
// disk every 33rd.
constexpr uint64_t progress_every = 99;

void show_percent(uint64_t position, int64_t size) {
  const double percent = static_cast<double>(static_cast<float>(position)) * 100.0;
  uni::progress_percent("percent: %d", static_cast<int>(percent / static_cast<double>(size)));
}

void show_percent_done(int64_t position, int64_t total) {
  const float percent = static_cast<float>(position) * 100.0F / static_cast<float>(total);
  uni::progress_percent("percent done: %d", static_cast<int>(percent));
}

bool scan_volumes(record_table& table, const cmd_opts& opts, const RAW_DISK_IO& disk) {
  if (!disk.is_open()) return false;
  std::vector<uint8_t> buffer(raw_read_size);
  const int64_t total = disk.size();
  uint32_t overlap = block_overlap;
  const int64_t end = std::min(total, largest_disk);
  for (int64_t position = 0; position < end; position += raw_read_size) {
    if (position % static_cast<int64_t>(progress_every) == 0) show_percent_done(position, total);
    uint32_t count = raw_read_size;
    if (disk.is_hole(position, count)) {
      // Zeros hold no record, so they are neither read nor searched.
      position -= overlap;
    } else if (disk.read(buffer.data(), count, position)) {
      if (count < overlap) overlap = 0;
      scan_buffer(table, opts, buffer.data(), count, static_cast<uint64_t>(position), overlap);
      position -= overlap;
    }
  }
  uni::message("success\n");
  return true;
}

}  // namespace

bool scan_raw_source(record_table& table, const cmd_opts& opts) {
  if (!opts.partition_path.empty()) {
    return scan_volumes(table, opts, RAW_DISK_IO(opts.partition_path, false));
  }
  return scan_volumes(table, opts, RAW_DISK_IO(opts.vmdk_paths, false));
}

bool scan_large_file(record_table& table, const cmd_opts& opts) {
  const uni::fileio file(opts.input_path);
  if (!file.is_open()) return false;
  const auto scan_chunk = [&](const file_block& block) {
    scan_buffer(table, opts, block.bytes, block.size, block.position, block.overlap);
    if (opts.show_progress && block.position % progress_every == 0) {
      show_percent(block.position, file.size());
    }
  };
  scan_file_blocks(file, scan_chunk, file_block_size, block_overlap, 0);
  if (opts.show_progress) uni::clear_line();
  return true;
}
