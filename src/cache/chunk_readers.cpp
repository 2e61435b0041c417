#include "cache/block_readers.h"

#include <unistd.h>

#include <algorithm>
#include <vector>

#include "cache/record_scan.h"
#include "media/file_blocks.h"
#include "media/raw_disk_io.h"
#include "uni/console.h"
#include "uni/fileio.h"
#include "uni/medium.h"
#include "uni/stretch.h"

namespace {

constexpr uint32_t file_block_size = 32768;
constexpr uint32_t block_overlap = 4096;
constexpr uint32_t raw_read_size = 65536;
// A header can claim any size, and to search it would take for ever: no more than this is searched.
constexpr int64_t largest_disk = 1LL << 46;
// Progress is shown at each block whose position in bytes is a multiple of this. That is every 99th
// block of a file and every 33rd of a disk, if no read was short or failed.
constexpr uint64_t progress_every = 99;

void show_percent(uint64_t position, int64_t size) {
  const double percent = static_cast<double>(static_cast<float>(position)) * 100.0;
  uni::progress_percent("percent: %d", static_cast<int>(percent / static_cast<double>(size)));
}

void show_percent_done(int64_t position, int64_t total) {
  const float percent = static_cast<float>(position) * 100.0F / static_cast<float>(total);
  uni::progress_percent("percent done: %d", static_cast<int>(percent));
}

void finish_progress(const cmd_opts& opts) {
  if (opts.show_progress) uni::clear_progress_line();
}

// Whether rows must wait for the end of their input. If they left while it is searched, they would
// stand ahead of messages that share their file, or overwrite what is still to be read.
bool rows_wait(const cmd_opts& opts, const std::vector<int>& inputs) {
  if (uni::same_file(opts.results_fd, STDERR_FILENO)) return true;
  return std::any_of(inputs.begin(), inputs.end(),
                     [&opts](int input) { return uni::writes_reach(opts.results_fd, input); });
}

bool scan_volumes(record_table& table, const cmd_opts& opts, const RAW_DISK_IO& disk) {
  if (!disk.is_open()) return false;
  const bool wait = rows_wait(opts, disk.descriptors());
  uni::stretch_finder stretches(disk);
  std::vector<uint8_t> buffer(raw_read_size);
  bool buffer_is_old = false;
  const int64_t total = disk.size();
  uint32_t overlap = block_overlap;
  const int64_t end = std::min(total, largest_disk);
  for (int64_t position = 0; position < end; position += raw_read_size) {
    if (position % static_cast<int64_t>(progress_every) == 0) show_percent_done(position, total);
    const auto base = static_cast<uint64_t>(position);
    uint32_t count = raw_read_size;
    // Zeros hold no record, so they are neither read nor searched.
    const bool zeros = stretches.all_zeros(base, count);
    // A short read leaves the rest of the buffer as it was, and that is searched too. Behind a
    // hole, which wasn't read, it must be zeros.
    if (!zeros && buffer_is_old) std::fill(buffer.begin(), buffer.end(), uint8_t{0});
    buffer_is_old = zeros;
    const bool read = !zeros && disk.read(buffer.data(), count, position);
    if (read && count < overlap) overlap = 0;
    if (zeros || read) position -= overlap;
    if (!wait) table.next_block_at(static_cast<uint64_t>(position) + raw_read_size);
    if (read) scan_buffer(table, opts, buffer.data(), count, base, overlap);
    table.end_block();
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
  const bool wait = rows_wait(opts, {file.descriptor()});
  const auto scan_chunk = [&](const file_block& block) {
    if (!wait) table.next_block_at(block.position + block.size - block.overlap);
    if (!block.zeros) {
      scan_buffer(table, opts, block.bytes, block.size, block.position, block.overlap);
    }
    table.end_block();
    if (opts.show_progress && block.position % progress_every == 0) {
      show_percent(block.position, file.size());
    }
  };
  scan_file_blocks(file, scan_chunk, file_block_size, block_overlap, 0);
  finish_progress(opts);
  return true;
}
