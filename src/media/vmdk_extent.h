// One file of a VMware disk: a hosted sparse extent with uncompressed grains and its descriptor
// inside. It knows nothing of its parent. Nothing here prints.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "media/zk_disk_structs.h"

class VMDK_EXTENT {
 public:
  VMDK_EXTENT() = default;
  VMDK_EXTENT(const VMDK_EXTENT&) = delete;
  VMDK_EXTENT& operator=(const VMDK_EXTENT&) = delete;
  ~VMDK_EXTENT();

  // Opens the file and reads its header, descriptor, grain directory and grain tables. False, with
  // `m_valid` false, if it is no such extent, can't be read, or its directory or its tables would
  // take more than is allowed below. Call once.
  [[nodiscard]] bool open(const std::wstring& path, bool write);

  // The place in the file of a byte of the virtual disk. False if this extent doesn't hold it; true
  // also where the place lies beyond the file's end.
  [[nodiscard]] bool locate_grain(uint64_t offset, uint64_t& file_offset) const;

  // The bytes from a place on the virtual disk to the end of its grain, in 32 bits.
  uint32_t bytes_to_grain_end(uint64_t offset) const;

  // For a place on the virtual disk that this extent doesn't hold: how many bytes from there on it
  // is certain not to hold, at least 1.
  uint64_t bytes_not_held(uint64_t offset) const;

  // Reads `count` bytes of the virtual disk from the grains that this extent holds. A grain that
  // the file's end cuts short is filled with zeros, or lowers `count`. False if nothing usable
  // came; `count` and `out` may be changed then.
  [[nodiscard]] bool read_extent(int fd, uint8_t* out, uint64_t offset, uint32_t& count) const;

  // The size of the virtual disk in bytes, by this extent's header.
  uint64_t capacity_bytes() const;

  // What a hostile header can make the directory and the tables take. Tables of the usual sizes may
  // be those of a disk of 4 TiB.
  static constexpr uint64_t largest_directory = 16ULL << 20;
  static constexpr uint64_t largest_tables = 256ULL << 20;

  std::vector<std::wstring> m_descriptor_lines;  // stored
  std::string m_encoding;
  std::string m_parent_cid;  // values unchanged, quotes and carriage returns included
  std::string m_cid;
  std::string m_parent_hint;
  VMDK_EXTENT* m_child = nullptr;          // next newer, borrowed
  VMDK_EXTENT* m_parent = nullptr;         // next older, borrowed
  std::vector<uint64_t> m_volume_offsets;  // in bytes; stored, and so is the next
  std::vector<uint32_t> m_volume_sector_sizes;
  uint64_t m_bytes_per_grain = 0;
  bool m_valid = false;
  int m_fd = -1;  // its own, closed at the end
  std::string m_path_utf8;
  std::wstring m_wide_path;

 private:
  bool parse();
  bool read_header();
  bool read_descriptor();
  void read_descriptor_line(const std::string& line);
  bool read_directory(std::vector<uint32_t>& directory);
  bool read_tables(const std::vector<uint32_t>& directory);
  void add_table(const uint8_t* bytes);
  // A table's entry: the sector of a grain, 0 if there is none.
  uint32_t entry_of(uint32_t table, uint32_t entry) const;
  bool read_first_sector();
  // Reads from the file; what it doesn't have becomes zeros. False if the read fails.
  [[nodiscard]] bool read_filled(uint8_t* out, size_t count, uint64_t at) const;

  std::array<uint8_t, vmdk_layout::sector_size> m_header = {};
  uint64_t m_file_size = 0;
  uint64_t m_bytes_per_table = 0;
  uint32_t m_entries_per_table = 0;
  uint32_t m_metadata_size = 0;  // in bytes
  // Of each table its number among those that aren't all zeros, or `empty_table`: most of a large
  // disk's are, and take no more memory than this.
  static constexpr uint32_t empty_table = 0xFFFFFFFF;
  std::vector<uint32_t> m_table_numbers;
  std::deque<uint32_t> m_entries;  // of these tables, one after the other
};
