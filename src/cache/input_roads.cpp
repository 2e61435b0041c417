#include "cache/input_roads.h"

#include "media/file_blocks.h"
#include "uni/console.h"
#include "uni/fileio.h"

namespace {

constexpr uint32_t file_block_size = 32768;
constexpr uint32_t block_overlap = 4096;
constexpr uint64_t progress_every = 99;  // bytes of position; so every 99th block

void show_percent(uint64_t position, int64_t size) {
  const double percent = static_cast<double>(static_cast<float>(position)) * 100.0;
  uni::progress_percent("percent: %d", static_cast<int>(percent / static_cast<double>(size)));
}

}  // namespace

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
