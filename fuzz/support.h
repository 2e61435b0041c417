// What the fuzz targets share.
#pragma once

// Each target has these from here.
// IWYU pragma: begin_exports
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cache/cache_row.h"
#include "cache/record_table.h"
#include "text/le_bytes.h"
// IWYU pragma: end_exports

#include <sanitizer/common_interface_defs.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "media/zk_disk_structs.h"

using byte_vector = std::vector<uint8_t>;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Ends the run where a promise of the program isn't kept.
inline void require(bool kept, const char* promise) {
  if (kept) return;
  __sanitizer_report_error_summary(promise);  // reaches the log though standard error is closed
  std::abort();
}

// A file in memory, under a path that can be opened.
struct memory_file {
  const int fd = ::memfd_create("fuzz", 0);

  std::string path() const { return "/proc/self/fd/" + std::to_string(fd); }

  void fill(const uint8_t* bytes, size_t size) const {
    require(::ftruncate(fd, static_cast<off_t>(size)) == 0 &&
                ::pwrite(fd, bytes, size, 0) == static_cast<ssize_t>(size),
            "a file in memory is written");
  }
};

// The texts of an input that holds NULs between them, at least `count`.
inline std::vector<std::string> texts_of(const uint8_t* data, size_t size, size_t count = 0) {
  std::vector<std::string> texts;
  for (size_t at = 0; at < size; at += texts.back().size() + 1) {
    texts.emplace_back(zk::bounded_string(data + at, data + size));
  }
  if (texts.size() < count) texts.resize(count);
  return texts;
}

// Whether an extent's header makes its tables so large, within what is allowed, that they take
// long.
inline bool takes_long(const uint8_t* extent, size_t size) {
  if (size < vmdk_layout::sector_size) return false;
  const uint32_t entries = zk::load_le32(extent + vmdk_layout::entries_per_table);
  const uint32_t metadata =
      zk::load_le32(extent + vmdk_layout::overhead) * vmdk_layout::sector_size;
  return (entries > 512 && entries <= 0x80000) || metadata > 0x8000;
}

// Where to read on a disk, by the last bytes of an input: near places as likely as far ones.
struct disk_place {
  uint64_t offset = 0;
  uint32_t count = 4096;

  disk_place(const uint8_t* data, size_t size) {
    if (size < 11) return;
    const uint8_t* const tail = data + size - 11;
    offset = zk::load_le64(tail) >> 2 >> tail[8] % 62;
    count = 1 + zk::load_le16(tail + 9) % 8192;
  }
};
