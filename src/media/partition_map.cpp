#include "media/partition_map.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>

#include "media/zk_disk_structs.h"
#include "text/le_bytes.h"

namespace {

constexpr uint8_t extended_types[] = {0x05, 0x0F};
constexpr uint64_t probe_reach = 76;  // a volume is probed if this much of it lies in the bytes

constexpr uint8_t known_types[] = {
    0x01, 0x04, 0x05, 0x06, 0x07, 0x08, 0x0b, 0x0c, 0x0e, 0x0f, 0x11, 0x12, 0x14, 0x15, 0x16, 0x1b,
    0x1c, 0x1e, 0x1f, 0x24, 0x27, 0x41, 0x42, 0x43, 0x56, 0x64, 0x66, 0x74, 0x76, 0x79, 0x7a, 0x7b,
    0x7c, 0x7d, 0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x8b, 0x8c, 0x8e, 0x90, 0x91,
    0x92, 0x93, 0x97, 0x98, 0x9a, 0xa8, 0xab, 0xac, 0xaf, 0xb6, 0xb7, 0xbb, 0xbc, 0xc2, 0xc3, 0xc4,
    0xc5, 0xc6, 0xc7, 0xcb, 0xcc, 0xcd, 0xce, 0xcf, 0xd4, 0xd5, 0xd6, 0xd8, 0xde, 0xe4, 0xe5, 0xe6,
    0xe8, 0xef, 0xf0, 0xf2, 0xf4, 0xf6, 0xf9, 0xfb, 0xfc, 0xfd, 0xfe};

bool has_text(const uint8_t* bytes, size_t at, const char* text) {
  return std::memcmp(bytes + at, text, std::strlen(text)) == 0;
}

// The tests and readers below are given at least 512 bytes.
bool is_volume_boot(const uint8_t* bytes) {
  return has_text(bytes, 3, "EXFA") || has_text(bytes, 3, "MSDO") || has_text(bytes, 3, "NTFS");
}

bool is_master_boot(const uint8_t* bytes) {
  return zk::load_le16(bytes + mbr_layout::signature_at) == mbr_layout::signature &&
         !is_volume_boot(bytes);
}

bool is_extended(uint8_t type) {
  return std::find(std::begin(extended_types), std::end(extended_types), type) !=
         std::end(extended_types);
}

struct partition_entry {
  uint8_t type;
  uint32_t first_sector;
  uint32_t sectors;

  bool usable() const {
    return type != 0 && sectors != 0 &&
           std::binary_search(std::begin(known_types), std::end(known_types), type);
  }
};

partition_entry entry_of(const uint8_t* record, size_t index) {
  const uint8_t* const entry = record + mbr_layout::entries + index * mbr_layout::entry_size;
  return {entry[mbr_layout::entry_type], zk::load_le32(entry + mbr_layout::entry_first_sector),
          zk::load_le32(entry + mbr_layout::entry_sectors)};
}

// The bytes that are being mapped, and what was found in them.
struct mapping {
  const uint8_t* bytes;
  uint64_t length;
  uint32_t sector_size;
  VOLUME_LIST& volumes;

  // The boot record at a sector; null where the bytes don't hold it whole.
  const uint8_t* record_at(uint64_t sector) const {
    if (length < mbr_layout::size || sector > (length - mbr_layout::size) / sector_size) {
      return nullptr;
    }
    return bytes + sector * sector_size;
  }

  // Adds the entries of a record, `base` being added to each first sector. The result is the first
  // sector of the extended entry that ended it, with nothing added, if there was one.
  std::optional<uint32_t> add_table(const uint8_t* record, uint64_t base) {
    for (uint32_t i = 0; i < mbr_layout::entry_count; ++i) {
      const partition_entry entry = entry_of(record, i);
      if (!entry.usable()) break;
      volumes.push_back({base + entry.first_sector, entry.sectors, entry.type, sector_size, {}, 0});
      if (is_extended(entry.type)) return entry.first_sector;
    }
    return std::nullopt;
  }

  // Follows the extended partition at `first`, whose later tables count from it.
  void add_extended(uint64_t first) {
    if (first == 0 || first >= length) return;  // Deliberate: a sector against a byte count
    const uint8_t* record = record_at(first);
    if (!record) return;
    const std::optional<uint32_t> link = add_table(record, first);
    if (!link) return;
    uint64_t next = first + *link;
    // A list with more tables than the bytes can hold is a circle.
    for (uint64_t left = length / mbr_layout::size; left > 0 && next < length; --left) {
      record = record_at(next);
      if (!record) return;
      const std::optional<uint32_t> onward = add_logical(record, first, next);
      if (!onward) return;
      next = first + *onward;
    }
  }

  // As add_table, but for a table of the list at `next`: its extended entry counts from `first`.
  std::optional<uint32_t> add_logical(const uint8_t* record, uint64_t first, uint64_t next) {
    const std::optional<uint32_t> link = add_table(record, next);
    if (link) volumes.back().m_start_sector = first + *link;
    return link;
  }
};

// Reads what the volume's boot sector tells, if all of it is there.
void probe(VOLUME_ENTRY& volume, const uint8_t* boot, uint64_t length) {
  if (length < mbr_layout::size) return;
  if (boot[13] != 0) volume.m_sectors_per_cluster = boot[13];
  const auto found = [&](uint16_t type, const char* name, uint32_t sector_size) {
    volume.m_type = type;
    volume.m_file_system = name;
    volume.m_sector_size = sector_size;
  };
  const auto count_at = [&](size_t at) {
    if (volume.m_num_sectors == 0) volume.m_num_sectors = zk::load_le64(boot + at);
  };
  const uint32_t sector_size = zk::load_le16(boot + 11);
  if (has_text(boot, 3, "EXFAT   ")) {
    found(7, "exfat", boot[108] < 32 ? 1U << boot[108] : 0);
    count_at(72);
  } else if (has_text(boot, 3, "NTFS    ")) {
    found(7, "ntfs", sector_size);
    count_at(40);
  } else if (has_text(boot, 3, "-FVE-FS-")) {
    found(7, "bitlocker container", sector_size);
    count_at(40);
  } else if (has_text(boot, 82, "FAT32")) {
    found(0x0C, "fat32", sector_size);
  } else if (has_text(boot, 54, "FAT16")) {
    found(4, "fat16", sector_size);
  }
}

// The sector size by the place of the signature at the end of a larger sector, or 0.
uint32_t larger_sector(const uint8_t* bytes, uint64_t length) {
  for (uint32_t sector = 1024; sector <= 16384; sector *= 2) {
    if (length > sector && zk::load_le16(bytes + sector - 2) == mbr_layout::signature)
      return sector;
  }
  return 0;
}

void map_from_master_boot(mapping& map) {
  map.add_extended(map.add_table(map.bytes, 0).value_or(0));
  for (VOLUME_ENTRY& volume : map.volumes) {
    if (volume.m_start_sector > map.length / map.sector_size) continue;
    const uint64_t at = volume.m_start_sector * map.sector_size;
    if (at + probe_reach < map.length) probe(volume, map.bytes + at, map.length - at);
  }
}

bool map_from_unknown_start(mapping& map) {
  for (uint64_t sector = 0; const uint8_t* record = map.record_at(sector); ++sector) {
    if (!is_master_boot(record)) continue;
    map.add_extended(sector);
    return true;
  }
  return false;
}

}  // namespace

bool partition_map(const uint8_t* bytes, uint64_t length, VOLUME_LIST& volumes, bool carving) {
  volumes.clear();
  if (!bytes || length < mbr_layout::size) return false;
  mapping map = {bytes, length, mbr_layout::size, volumes};
  if (is_master_boot(bytes)) {
    map_from_master_boot(map);
  } else if (is_volume_boot(bytes)) {
    if (!carving) return false;
    volumes.push_back({0, 0, 0, mbr_layout::size, {}, 0});
    probe(volumes[0], bytes, mbr_layout::size);
  } else if (const uint32_t sector = larger_sector(bytes, length); sector != 0) {
    map.sector_size = sector;
    map_from_master_boot(map);
  } else if (!carving || !map_from_unknown_start(map)) {
    return false;
  }
  return !volumes.empty();
}
