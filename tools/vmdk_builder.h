// Builds small sparse extents: one sector for each table, grains of 4 KiB.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "media/zk_disk_structs.h"
#include "text/le_bytes.h"

struct vmdk_builder {
  std::string descriptor;
  std::map<uint32_t, std::vector<uint8_t>> grains = {};  // by number; shorter ones end the file
  uint32_t tables = 2;

  static std::string keys(const std::string& cid, const std::string& parent,
                          const std::string& more = "") {
    return "# Disk DescriptorFile\nCID=" + cid + "\nparentCID=" + parent + "\n" + more;
  }

  std::vector<uint8_t> bytes() const {
    const uint32_t directory = 3, first_table = 4, overhead = first_table + tables;
    std::vector<uint8_t> made(size_t{overhead} * 512);
    const auto put = [&](size_t at, uint64_t value) {
      zk::store_le32(&made[at], static_cast<uint32_t>(value));
    };
    put(0, vmdk_layout::magic);
    put(vmdk_layout::capacity, tables * 128 * 8 - 128);  // so that no read exceeds the tables
    put(vmdk_layout::grain_size, 8);
    put(vmdk_layout::descriptor_offset, 1);
    put(vmdk_layout::descriptor_size, 2);
    put(vmdk_layout::entries_per_table, 128);
    put(vmdk_layout::directory_offset, directory);
    put(vmdk_layout::overhead, overhead);
    std::copy(descriptor.begin(), descriptor.end(), made.begin() + 512);
    for (uint32_t i = 0; i < tables; ++i) put(directory * 512 + i * 4, first_table + i);
    for (const auto& [number, content] : grains) {
      made.resize((made.size() + 511) / 512 * 512);
      put(first_table * 512 + number * 4, made.size() / 512);
      made.insert(made.end(), content.begin(), content.end());
    }
    return made;
  }
};
