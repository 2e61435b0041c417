#include "media/source_blocks.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "media/raw_disk_io.h"
#include "uni/fileio.h"
#include "uni/stretch.h"

namespace {

// What a file and a disk do differently.
struct file_source {
  const uni::fileio& file;
  static constexpr bool failed_read_ends = true;
  // Deliberate: what one read brought is the most that later ones ask for.
  static constexpr bool size_follows_reads = true;

  bool read(uint8_t* out, uint32_t& count, uint64_t offset) const {
    return file.read_at(out, count, static_cast<int64_t>(offset));
  }
  uni::stretch stretch_at(uint64_t offset) const { return file.stretch_at(offset); }
};

struct disk_source {
  const RAW_DISK_IO& disk;
  static constexpr bool failed_read_ends = false;
  static constexpr bool size_follows_reads = false;

  bool read(uint8_t* out, uint32_t& count, uint64_t offset) const {
    return disk.read(out, count, static_cast<int64_t>(offset));
  }
  uni::stretch stretch_at(uint64_t offset) const { return disk.stretch_at(offset); }
};

struct block_range {
  uint64_t begin;
  uint64_t end;
  uint32_t size;
  uint32_t overlap;
};

template <class Source>
void scan_blocks(const Source& source, block_range range, const block_callback& callback) {
  uni::stretch_finder stretches(source);
  std::vector<uint8_t> buffer(range.size);
  bool buffer_is_old = false;
  uint32_t size = range.size;
  uint32_t overlap = range.overlap;
  for (uint64_t position = range.begin; position < range.end && size != 0;) {
    const bool hole = stretches.all_zeros(position, size);
    // Where a read doesn't fill the buffer, what an earlier one left is searched. Behind a hole,
    // which wasn't read, that must be zeros.
    if (!hole && buffer_is_old) std::fill(buffer.begin(), buffer.end(), uint8_t{0});
    buffer_is_old = hole;
    uint32_t count = size;
    const bool read = !hole && source.read(buffer.data(), count, position);
    const bool failed = !hole && !read;
    if (failed && Source::failed_read_ends) return;
    if (!failed && count <= overlap) overlap = 0;
    if (Source::size_follows_reads) size = count;
    const uint64_t next = position + size - (failed ? 0 : overlap);
    callback({buffer.data(), count, overlap, position, next, read});
    position = next;
    if (Source::size_follows_reads && range.end - position < size) {
      size = static_cast<uint32_t>(range.end - position);
    }
  }
}

}  // namespace

bool scan_file_blocks(const uni::fileio& file, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t start) {
  if (!file.is_open()) return false;
  const auto size = static_cast<uint64_t>(file.size());
  block_range range = {start, size, block_size, overlap};
  if (size - start < block_size) {
    range.size = static_cast<uint32_t>(size - start);
    range.overlap = 0;
  }
  scan_blocks(file_source{file}, range, callback);
  return true;
}

void scan_disk_blocks(const RAW_DISK_IO& disk, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t end) {
  scan_blocks(disk_source{disk}, {0, end, block_size, overlap}, callback);
}
