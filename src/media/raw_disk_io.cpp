#include "media/raw_disk_io.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "media/vmdk_chain.h"
#include "text/zk_wide.h"
#include "uni/fileio.h"
#include "uni/stretch.h"

RAW_DISK_IO::RAW_DISK_IO(const std::string& path, bool write) {
  if (path.empty()) return;
  m_kind = plain;
  const auto access = write ? uni::fileio::access::write : uni::fileio::access::read;
  const uni::open_mode mode = uni::open_mode_for(access);
  m_fd = uni::open_raw(zk::wide_to_utf8(zk::utf8_to_wide(path)), mode.flags, mode.creation_mode);
  if (m_fd == -1) return;
  m_size = ::lseek(m_fd, 0, SEEK_END);
  m_open = true;
}

RAW_DISK_IO::RAW_DISK_IO(const std::vector<std::wstring>& paths, bool write) {
  if (paths.empty()) return;
  m_kind = chain;
  m_chain = std::make_unique<VMDK_CHAIN>(write);
  if (!m_chain->add_files(paths) || !m_chain->link()) return;
  m_fd = m_chain->m_base->m_fd;
  m_size = static_cast<int64_t>(m_chain->m_base->capacity_bytes());
  m_open = true;
}

RAW_DISK_IO::~RAW_DISK_IO() {
  if (!m_chain && m_fd != -1) ::close(m_fd);
}

bool RAW_DISK_IO::read(uint8_t* out, uint32_t& count, int64_t offset) const {
  if (!out || !m_open || m_fd == -1 || count == 0 || m_size <= offset) return false;
  if (m_kind == plain) return read_plain(out, count, offset);
  return m_kind == chain && m_chain->read_chain(out, static_cast<uint64_t>(offset), count);
}

bool RAW_DISK_IO::read_plain(uint8_t* out, uint32_t& count, int64_t offset) const {
  if (offset < 0) return false;
  count = static_cast<uint32_t>(std::min<int64_t>(count, m_size - offset));
  // Deliberate: a short read doesn't lower the count.
  return ::pread(m_fd, out, count, offset) != -1;
}

std::vector<int> RAW_DISK_IO::descriptors() const {
  if (m_kind != chain) return {m_fd};
  std::vector<int> found;
  for (const auto& [key, extent] : m_chain->m_extents) found.push_back(extent->m_fd);
  return found;
}

uni::stretch RAW_DISK_IO::stretch_at(uint64_t offset) const {
  if (!m_open) return {std::numeric_limits<uint64_t>::max(), false};
  return m_kind == chain ? m_chain->stretch_at(offset) : uni::stretch_of(m_fd, offset);
}
