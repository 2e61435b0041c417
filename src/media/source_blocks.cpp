#include "media/file_blocks.h"

#include <vector>

bool scan_file_blocks(const uni::fileio& file, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t start) {
  if (!file.is_open()) return false;
  const auto size = static_cast<uint64_t>(file.size());
  if (size - start < block_size) {
    block_size = static_cast<uint32_t>(size - start);
    overlap = 0;
  }
  std::vector<uint8_t> buffer(block_size);
  uint32_t count = block_size;
  uint64_t offset = start;
  uni::stretch_finder stretches(file);
  do {
    const bool zeros = stretches.all_zeros(offset, count);
    if (!zeros && !file.read_at(buffer.data(), count, static_cast<int64_t>(offset))) break;
    if (count <= overlap) overlap = 0;
    callback({buffer.data(), count, overlap, offset, zeros});
    offset += count - overlap;
    // The count isn't reset: after a short read no later one asks for more.
    if (count + offset > size) count = static_cast<uint32_t>(size - offset);
  } while (offset < size && static_cast<int32_t>(count) >= 1);
  return true;
}
