// The volumes at the start of a disk, as its master boot record tells them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct VOLUME_ENTRY {
  uint64_t m_start_sector = 0;
  uint64_t m_num_sectors = 0;
  uint16_t m_type = 0;
  uint32_t m_sector_size = 0;
  std::string m_file_system;           // "ntfs" and the like, where its boot sector was seen
  uint32_t m_sectors_per_cluster = 0;  // 0 if unknown
};

using VOLUME_LIST = std::vector<VOLUME_ENTRY>;

// Replaces `volumes` by those that the bytes show. With `carving` bytes that begin with a volume's
// own boot sector are accepted, and a master boot record is searched for where none is at the
// start. Boot records that lie beyond the bytes are skipped. False, and an empty list, if there is
// none; prints nothing.
bool partition_map(const uint8_t* bytes, uint64_t length, VOLUME_LIST& volumes, bool carving);
