#include "media/vmdk_extent.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <string>
#include <vector>

#include "media/partition_map.h"
#include "media/zk_disk_structs.h"
#include "text/le_bytes.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"
#include "uni/fileio.h"

namespace {

// A number of sectors in bytes, in 32 bits.
uint32_t sectors_to_bytes32(uint64_t sectors) {
  return static_cast<uint32_t>(sectors * vmdk_layout::sector_size);
}

}  // namespace

VMDK_EXTENT::~VMDK_EXTENT() {
  if (m_fd != -1) ::close(m_fd);
}

bool VMDK_EXTENT::open(const std::wstring& path, bool write) {
  m_wide_path = path;
  m_path_utf8 = zk::wide_to_utf8(path);
  const auto access = write ? uni::fileio::access::write : uni::fileio::access::read;
  const uni::open_mode mode = uni::open_mode_for(access);
  m_fd = uni::open_raw(m_path_utf8, mode.flags, mode.creation_mode);
  // Every size that came from the file is bounded before it is taken.
  try {
    m_valid = m_fd != -1 && parse();
  } catch (const std::exception&) {
    m_valid = false;
  }
  return m_valid;
}

bool VMDK_EXTENT::parse() {
  const off_t end = ::lseek(m_fd, 0, SEEK_END);
  if (end == -1) return false;
  m_file_size = static_cast<uint64_t>(end);
  std::vector<uint32_t> directory;
  return read_header() && read_descriptor() && read_directory(directory) &&
         read_tables(directory) && read_first_sector();
}

bool VMDK_EXTENT::read_header() {
  if (!read_filled(m_header.data(), m_header.size(), 0)) return false;
  if (zk::load_le32(m_header.data()) != vmdk_layout::magic) return false;
  const uint64_t grain_sectors = zk::load_le64(&m_header[vmdk_layout::grain_size]);
  m_entries_per_table = zk::load_le32(&m_header[vmdk_layout::entries_per_table]);
  m_bytes_per_grain = grain_sectors * vmdk_layout::sector_size;
  m_bytes_per_table = m_entries_per_table * m_bytes_per_grain;
  m_metadata_size = sectors_to_bytes32(zk::load_le64(&m_header[vmdk_layout::overhead]));
  // Both are divisors: 0 is refused, also one from overflow.
  return m_bytes_per_grain != 0 && m_bytes_per_table != 0;
}

bool VMDK_EXTENT::read_descriptor() {
  const uint64_t at =
      zk::load_le64(&m_header[vmdk_layout::descriptor_offset]) * vmdk_layout::sector_size;
  const uint32_t size = sectors_to_bytes32(zk::load_le64(&m_header[vmdk_layout::descriptor_size]));
  if (::lseek(m_fd, static_cast<off_t>(at), SEEK_SET) == -1) return false;
  // The text ends at a NUL, and so at the file's end, whatever size it is said to have.
  constexpr uint32_t piece_size = 65536;
  std::string text;
  bool ended = false;
  for (uint64_t done = 0; done < size && !ended; done += piece_size) {
    std::string piece(static_cast<size_t>(std::min<uint64_t>(piece_size, size - done)), '\0');
    if (!read_filled(reinterpret_cast<uint8_t*>(piece.data()), piece.size(), at + done)) {
      return false;
    }
    const size_t nul = piece.find('\0');
    ended = nul != std::string::npos;
    text.append(piece, 0, nul);
  }
  for (size_t begin = 0; begin < text.size();) {
    const size_t line_end = std::min(text.find('\n', begin), text.size());
    if (line_end != begin) read_descriptor_line(text.substr(begin, line_end - begin));
    begin = line_end + 1;
  }
  return true;
}

void VMDK_EXTENT::read_descriptor_line(const std::string& line) {
  m_descriptor_lines.push_back(zk::utf8_to_wide(line));
  const struct {
    const char* name;
    std::string& value;
  } keys[] = {{"cid=", m_cid},
              {"parentcid=", m_parent_cid},
              {"encoding=", m_encoding},
              {"parentfilenamehint=", m_parent_hint}};
  std::string copy = line;
  zk::to_lower(copy);
  for (const auto& key : keys) {
    if (!copy.starts_with(key.name)) continue;
    key.value = line.substr(std::strlen(key.name));
    return;
  }
}

bool VMDK_EXTENT::read_directory(std::vector<uint32_t>& directory) {
  const uint64_t overhead_sectors = zk::load_le64(&m_header[vmdk_layout::overhead]);
  const uint64_t begin =
      zk::load_le64(&m_header[vmdk_layout::directory_offset]) * vmdk_layout::sector_size;
  if (m_metadata_size < std::max(begin, overhead_sectors * vmdk_layout::sector_size)) return false;
  if (m_metadata_size - begin < sizeof(uint32_t)) return false;
  std::array<uint8_t, sizeof(uint32_t)> first = {};
  if (!read_filled(first.data(), first.size(), begin)) return false;
  const uint32_t first_table = sectors_to_bytes32(zk::load_le32(first.data()));
  if (m_metadata_size < first_table || first_table < begin) return false;

  // The directory ends where the first table begins.
  const uint64_t size = (first_table - begin) / vmdk_layout::sector_size * vmdk_layout::sector_size;
  const uint64_t table_bytes = uint64_t{m_entries_per_table} * sizeof(uint32_t);
  if (size == 0 || size > largest_directory) return false;
  if (size / sizeof(uint32_t) * table_bytes > largest_tables) return false;
  std::vector<uint8_t> bytes(static_cast<size_t>(size));
  directory.resize(bytes.size() / sizeof(uint32_t));
  if (!read_filled(bytes.data(), bytes.size(), begin)) return false;
  for (size_t i = 0; i < directory.size(); ++i) {
    directory[i] = zk::load_le32(&bytes[i * sizeof(uint32_t)]);
  }
  return true;
}

bool VMDK_EXTENT::read_tables(const std::vector<uint32_t>& directory) {
  // At most largest_tables, which read_directory checked.
  const size_t table_bytes = m_entries_per_table * sizeof(uint32_t);
  // Tables mostly follow one another, so that one read brings many.
  const size_t most_ahead = std::max<size_t>(table_bytes, 1 << 18);
  std::vector<uint8_t> ahead;
  uint64_t ahead_at = 0;
  std::vector<uint8_t> scratch(table_bytes);
  m_table_numbers.reserve(directory.size());
  for (const uint32_t sector : directory) {
    const uint64_t at = sectors_to_bytes32(sector);
    if (at + table_bytes > m_metadata_size) {
      // Where the read fails, the tables read so far are all. After a short one the rest of
      // `scratch` is what an earlier one left there.
      if (::pread(m_fd, scratch.data(), table_bytes, static_cast<off_t>(at)) == -1) break;
      add_table(scratch.data());
      continue;
    }
    if (at < ahead_at || at + table_bytes > ahead_at + ahead.size()) {
      ahead_at = at;
      ahead.resize(static_cast<size_t>(std::min<uint64_t>(most_ahead, m_metadata_size - at)));
      if (!read_filled(ahead.data(), ahead.size(), at)) {
        // What can't be read may lie after this table.
        ahead.resize(table_bytes);
        if (!read_filled(ahead.data(), ahead.size(), at)) return false;
      }
    }
    add_table(&ahead[static_cast<size_t>(at - ahead_at)]);
  }
  return !m_table_numbers.empty();
}

void VMDK_EXTENT::add_table(const uint8_t* bytes) {
  const size_t size = m_entries_per_table * sizeof(uint32_t);
  // Each byte equals the next, so all are 0.
  if (bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0) {
    m_table_numbers.push_back(empty_table);
    return;
  }
  m_table_numbers.push_back(static_cast<uint32_t>(m_entries.size() / m_entries_per_table));
  for (size_t at = 0; at < size; at += sizeof(uint32_t)) {
    m_entries.push_back(zk::load_le32(bytes + at));
  }
}

uint32_t VMDK_EXTENT::entry_of(uint32_t table, uint32_t entry) const {
  const uint32_t number = m_table_numbers[table];
  return number == empty_table ? 0 : m_entries[size_t{number} * m_entries_per_table + entry];
}

bool VMDK_EXTENT::read_first_sector() {
  std::array<uint8_t, vmdk_layout::sector_size> sector = {};
  if (!read_filled(sector.data(), sector.size(), sectors_to_bytes32(entry_of(0, 0)))) {
    return false;
  }
  VOLUME_LIST volumes;
  if (!partition_map(sector.data(), sector.size(), volumes, false)) {
    partition_map(sector.data(), sector.size(), volumes, true);
  }
  for (const VOLUME_ENTRY& volume : volumes) {
    m_volume_offsets.push_back(volume.m_start_sector * volume.m_sector_size);
    m_volume_sector_sizes.push_back(volume.m_sector_size);
  }
  return true;
}

bool VMDK_EXTENT::locate_grain(uint64_t offset, uint64_t& file_offset) const {
  if (!m_valid) return false;
  const auto table = static_cast<uint32_t>(offset / m_bytes_per_table);
  if (table >= m_table_numbers.size()) return false;
  const uint64_t entry = (offset - table * m_bytes_per_table) / m_bytes_per_grain;
  if (static_cast<uint32_t>(entry) >= m_entries_per_table) return false;
  const uint32_t sector = entry_of(table, static_cast<uint32_t>(entry));
  if (sector == 0) return false;
  file_offset = uint64_t{sector} * vmdk_layout::sector_size +
                static_cast<uint32_t>(offset % m_bytes_per_grain);
  return true;
}

uint32_t VMDK_EXTENT::bytes_to_grain_end(uint64_t offset) const {
  if (!m_valid) return 0;
  return static_cast<uint32_t>(m_bytes_per_grain - offset % m_bytes_per_grain);
}

uint64_t VMDK_EXTENT::bytes_not_held(uint64_t offset) const {
  constexpr uint64_t most = std::numeric_limits<uint64_t>::max();
  if (!m_valid) return most;
  const auto table = static_cast<uint32_t>(offset / m_bytes_per_table);
  const uint64_t left_in_table = m_bytes_per_table - offset % m_bytes_per_table;
  if (table < m_table_numbers.size()) {
    if (m_table_numbers[table] == empty_table) return left_in_table;
    // Where products wrap, a table isn't a whole number of grains long.
    const uint64_t in_table = offset - table * m_bytes_per_table;
    return std::min(left_in_table, m_bytes_per_grain - in_table % m_bytes_per_grain);
  }
  // Nothing is held after the last table, until the table's number starts from 0 again.
  const uint64_t tables_left = std::numeric_limits<uint32_t>::max() - table;
  if (tables_left > (most - left_in_table) / m_bytes_per_table) return most;
  return left_in_table + tables_left * m_bytes_per_table;
}

bool VMDK_EXTENT::read_extent(int fd, uint8_t* out, uint64_t offset, uint32_t& count) const {
  uint64_t file_offset = 0;
  if (!m_valid || fd == -1 || count == 0) return false;
  if (!locate_grain(offset, file_offset) || file_offset >= m_file_size) return false;
  if (file_offset + count >= m_file_size) count = static_cast<uint32_t>(m_file_size - file_offset);
  uint32_t total = 0;
  for (;;) {
    const uint32_t piece = std::min(count - total, bytes_to_grain_end(offset));
    const ssize_t got = ::pread(fd, out + total, piece, static_cast<off_t>(file_offset));
    if (got < 1) return false;
    std::memset(out + total + got, 0, piece - static_cast<uint32_t>(got));
    total += piece;
    offset += piece;
    if (total == count) return true;
    if (!locate_grain(offset, file_offset)) return false;
  }
}

uint64_t VMDK_EXTENT::capacity_bytes() const {
  return m_valid ? zk::load_le64(&m_header[vmdk_layout::capacity]) * vmdk_layout::sector_size : 0;
}

bool VMDK_EXTENT::read_filled(uint8_t* out, size_t count, uint64_t at) const {
  size_t done = 0;
  while (done < count && at + done < m_file_size) {
    const ssize_t got = ::pread(m_fd, out + done, count - done, static_cast<off_t>(at + done));
    if (got == -1) return false;
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  if (done < count) std::memset(out + done, 0, count - done);
  return true;
}
