#include "cache/chunk_readers.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "cache/record_scan.h"
#include "cache/record_table.h"
#include "media/raw_disk_io.h"
#include "media/source_blocks.h"
#include "opts/cmd_opts.h"
#include "uni/console.h"
#include "uni/fileio.h"
#include "uni/medium.h"

namespace {

constexpr uint32_t file_chunk_size = 32768;
constexpr uint32_t disk_chunk_size = 65536;
constexpr uint32_t chunk_overlap = 4096;
// A header can claim any size, and to search it would take for ever: no more than this is searched.
constexpr int64_t largest_disk = 1LL << 46;
// Progress is shown at each chunk whose position in bytes is a multiple of this. That is every 99th
// chunk of a file and every 33rd of a disk, if no read was short or failed.
constexpr uint64_t progress_every = 99;

// Deliberate: this percentage is computed in double after the position was cut to float, the next
// one all in float.
void show_percent(uint64_t position, int64_t size) {
  const double percent = static_cast<double>(static_cast<float>(position)) * 100.0;
  uni::progress_percent("percent: %d", static_cast<int>(percent / static_cast<double>(size)));
}

void show_percent_done(uint64_t position, int64_t total) {
  const float percent = static_cast<float>(position) * 100.0F / static_cast<float>(total);
  uni::progress_percent("percent done: %d", static_cast<int>(percent));
}

void finish_progress(const cmd_opts& opts) {
  if (opts.show_progress) uni::clear_progress_line();
}

// Whether rows must wait for the end of their input. If they were written while it is searched,
// they would come before messages that share their file, or overwrite what is still to be read.
bool rows_wait(const cmd_opts& opts, const std::vector<int>& inputs) {
  if (uni::same_file(opts.results_fd, STDERR_FILENO)) return true;
  return std::any_of(inputs.begin(), inputs.end(),
                     [&opts](int input) { return uni::writes_reach(opts.results_fd, input); });
}

void scan_chunk(record_table& table, const cmd_opts& opts, const source_block& chunk) {
  table.next_chunk_at(chunk.next_position);
  if (chunk.has_bytes) {
    scan_buffer(table, opts, chunk.bytes, chunk.size, chunk.position, chunk.overlap);
  }
  table.end_chunk();
}

bool scan_volumes(record_table& table, const cmd_opts& opts, const RAW_DISK_IO& disk) {
  if (!disk.is_open()) return false;
  if (rows_wait(opts, disk.descriptors())) table.keep_all();
  const auto take = [&](const source_block& chunk) {
    if (chunk.position % progress_every == 0) show_percent_done(chunk.position, disk.size());
    scan_chunk(table, opts, chunk);
  };
  const int64_t end = std::clamp<int64_t>(disk.size(), 0, largest_disk);
  scan_disk_blocks(disk, take, disk_chunk_size, chunk_overlap, static_cast<uint64_t>(end));
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
  if (rows_wait(opts, {file.descriptor()})) table.keep_all();
  const auto take = [&](const source_block& chunk) {
    scan_chunk(table, opts, chunk);
    if (opts.show_progress && chunk.position % progress_every == 0) {
      show_percent(chunk.position, file.size());
    }
  };
  scan_file_blocks(file, take, file_chunk_size, chunk_overlap, 0);
  finish_progress(opts);
  return true;
}
