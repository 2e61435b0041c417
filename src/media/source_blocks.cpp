#include "media/source_blocks.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "media/raw_disk_io.h"
#include "uni/fileio.h"
#include "uni/stretch.h"

namespace {

// What a file and a disk do differently.
struct block_rules {
  bool failed_read_ends;    // the scan; else the block is skipped
  bool size_follows_reads;  // what one read brought is the most that later ones ask for
};
constexpr block_rules file_rules = {true, true};
constexpr block_rules disk_rules = {false, false};

bool read(const uni::fileio& file, uint8_t* out, uint32_t& count, uint64_t offset) {
  return file.read_at(out, count, static_cast<int64_t>(offset));
}
bool read(const RAW_DISK_IO& disk, uint8_t* out, uint32_t& count, uint64_t offset) {
  return disk.read(out, count, static_cast<int64_t>(offset));
}

template <class Source>
void scan_blocks(const Source& source, block_rules rules, uint64_t begin, uint64_t end,
                 uint32_t size, uint32_t overlap, const block_callback& callback) {
  uni::stretch_finder stretches(source);
  std::vector<uint8_t> buffer(size);
  bool after_hole = false;
  for (uint64_t position = begin; position < end && size != 0;) {
    const bool hole = stretches.all_zeros(position, size);
    // Where a read doesn't fill the buffer, what an earlier one left is searched. After a hole,
    // which wasn't read, that must be zeros.
    if (!hole && after_hole) std::fill(buffer.begin(), buffer.end(), uint8_t{0});
    after_hole = hole;
    uint32_t count = size;
    const bool failed = !hole && !read(source, buffer.data(), count, position);
    if (failed && rules.failed_read_ends) return;
    if (!failed && count <= overlap) overlap = 0;
    if (rules.size_follows_reads) size = count;
    const uint64_t next = position + size - (failed ? 0 : overlap);
    callback({buffer.data(), count, overlap, position, next, !hole && !failed});
    position = next;
    if (rules.size_follows_reads) {
      size = static_cast<uint32_t>(std::min<uint64_t>(size, end - position));
    }
  }
}

}  // namespace

bool scan_file_blocks(const uni::fileio& file, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t start) {
  if (!file.is_open()) return false;
  const auto end = static_cast<uint64_t>(file.size());
  if (end - start < block_size) {
    block_size = static_cast<uint32_t>(end - start);
    overlap = 0;
  }
  scan_blocks(file, file_rules, start, end, block_size, overlap, callback);
  return true;
}

void scan_disk_blocks(const RAW_DISK_IO& disk, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t end) {
  scan_blocks(disk, disk_rules, 0, end, block_size, overlap, callback);
}
