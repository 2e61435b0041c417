// The volumes that the first sectors of a disk tell of.
#include <algorithm>

#include "media/partition_map.h"

#include "fuzz/support.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto same = [](const VOLUME_ENTRY& a, const VOLUME_ENTRY& b) {
    return a.m_start_sector == b.m_start_sector && a.m_num_sectors == b.m_num_sectors &&
           a.m_type == b.m_type && a.m_file_system == b.m_file_system;
  };
  VOLUME_LIST plain;
  VOLUME_LIST carved(1);
  const bool found = partition_map(data, size, plain, false);
  require(found == !plain.empty(), "the result tells of volumes");
  require(partition_map(data, size, carved, true) == !carved.empty(), "and so when carving");
  require(!found || std::equal(plain.begin(), plain.end(), carved.begin(), carved.end(), same),
          "carving changes nothing where a record is at the start");
  require(carved.size() <= 4 * (size / 512 + 2), "a list in circles ends");
  return 0;
}
