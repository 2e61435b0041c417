// A flat, byte-addressable view of a raw source: a device or an image, or a VMware disk. It keeps
// no cache and knows no file system. Nothing here prints.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "media/vmdk_chain.h"
#include "uni/stretch.h"

class RAW_DISK_IO {
 public:
  // Opens a device or an image as a plain descriptor.
  RAW_DISK_IO(const std::string& path, bool write);
  // Opens a VMware disk from its files, in any order. Its size is that of its base.
  RAW_DISK_IO(const std::vector<std::wstring>& paths, bool write);
  RAW_DISK_IO(const RAW_DISK_IO&) = delete;
  RAW_DISK_IO& operator=(const RAW_DISK_IO&) = delete;
  ~RAW_DISK_IO();

  bool is_open() const { return m_open; }

  // The size in bytes, 0 if not open.
  int64_t size() const { return m_open ? m_size : 0; }

  // Reads `count` bytes from `offset`. A plain source clamps `count` to its end, and no further:
  // after a short read the rest of `out` is what it was. A VMware disk leaves `count` full: beyond
  // its end it brings what its extents still hold there, and zeros. False for a null `out`, a
  // source that isn't open, a count of 0, an offset at or beyond the end, and a read that fails,
  // which may have clamped `count`.
  [[nodiscard]] bool read(uint8_t* out, uint32_t& count, int64_t offset) const;

  // Whether the bytes from `offset` on are a hole: of a plain source where its file system tells,
  // of a VMware disk by its grain tables.
  uni::stretch stretch_at(uint64_t offset) const;

  // The descriptors of all its files, which stay this object's.
  std::vector<int> descriptors() const;

 private:
  enum kind : uint32_t { plain = 0, chain = 4, none = 8 };

  bool read_plain(uint8_t* out, uint32_t& count, int64_t offset) const;

  std::unique_ptr<VMDK_CHAIN> m_chain;
  [[maybe_unused]] uint32_t m_bytes_per_sector = 512;  // no source is asked for its own
  int m_fd = -1;  // of a VMware disk its base's, which its extent owns
  kind m_kind = none;
  bool m_open = false;
  int64_t m_size = 0;
};
