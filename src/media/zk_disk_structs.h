// On-disk records of disks, all little-endian: master boot records and the header of a VMware
// hosted sparse extent.
#pragma once

#include <cstdint>

// A master boot record: four entries of 16 bytes, then its signature.
namespace mbr_layout {
inline constexpr uint32_t size = 512;
inline constexpr uint32_t entries = 446;
inline constexpr uint32_t entry_count = 4;
inline constexpr uint32_t entry_size = 16;
inline constexpr uint32_t entry_type = 4;          // 1 byte
inline constexpr uint32_t entry_first_sector = 8;  // 4 bytes
inline constexpr uint32_t entry_sectors = 12;      // 4 bytes
inline constexpr uint32_t signature_at = 510;
inline constexpr uint16_t signature = 0xAA55;
}  // namespace mbr_layout

// The header in sector 0 of an extent. Offsets and sizes that it holds count sectors of 512 bytes.
namespace vmdk_layout {
inline constexpr uint32_t sector_size = 512;
inline constexpr uint32_t magic = 0x564D444B;      // "KDMV"
inline constexpr uint32_t capacity = 12;           // 8 bytes
inline constexpr uint32_t grain_size = 20;         // 8
inline constexpr uint32_t descriptor_offset = 28;  // 8
inline constexpr uint32_t descriptor_size = 36;    // 8
inline constexpr uint32_t entries_per_table = 44;  // 4
inline constexpr uint32_t directory_offset = 56;   // 8
inline constexpr uint32_t overhead = 64;           // 8
}  // namespace vmdk_layout
