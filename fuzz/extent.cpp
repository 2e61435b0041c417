// One file of a VMware disk.
#include <algorithm>

#include "fuzz/support.h"
#include "media/vmdk_extent.h"
#include "text/zk_wide.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (takes_long(data, size)) return 0;
  static const memory_file file;
  file.fill(data, size);
  VMDK_EXTENT extent;
  if (!extent.open(zk::utf8_to_wide(file.path()), false)) return 0;
  const disk_place place(data, size);
  byte_vector out(place.count, 'a');
  uint32_t count = place.count;
  const bool read = extent.read_extent(extent.m_fd, out.data(), place.offset, count);
  if (!read) return 0;
  require(count != 0 && count <= place.count,
          "a read brings something, and no more than was asked");
  require(std::all_of(out.begin() + count, out.end(), [](uint8_t byte) { return byte == 'a'; }),
          "a read writes no more than it tells");
  if (extent.m_bytes_per_grain > UINT32_MAX) return 0;  // places in it are cut to 32 bits
  for (uint32_t i = 0; i < count; ++i) {
    uint64_t at = 0;
    require(extent.locate_grain(place.offset + i, at), "what was read is held");
    require(out[i] == (at < size ? data[at] : 0), "a read brings the file's bytes");
  }
  return 0;
}
