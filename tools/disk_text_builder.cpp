#include "tools/disk_text_builder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "media/zk_disk_structs.h"
#include "text/le_bytes.h"
#include "tools/case_file.h"
#include "tools/vmdk_builder.h"

namespace {

// Puts an entry, or a name, into a record. The result is the place of the next entry.
uint8_t* put_word(uint8_t* record, uint8_t* entry, const std::string& word) {
  const strings values = cells(word);
  if (values.size() == 1) {
    std::copy_n((word + "        ").begin(), 8, record + 3);
    return entry;
  }
  entry[mbr_layout::entry_type] = number<uint8_t>(values[0]);
  zk::store_le32(entry + mbr_layout::entry_first_sector, number32(values[1]));
  zk::store_le32(entry + mbr_layout::entry_sectors, number32(values.at(2)));
  return entry + mbr_layout::entry_size;
}

}  // namespace

std::vector<uint8_t> vmdk_from_text(const std::string& keys, const std::string& grains,
                                    const strings& changes) {
  vmdk_builder builder{keys};
  for (uint32_t n = 0; n < grains.size(); ++n) {
    if (grains[n] != '.') builder.grains[n].assign(4096, static_cast<uint8_t>(grains[n]));
  }
  std::vector<uint8_t> made = builder.bytes();
  for (const std::string& each : changes) {
    const strings change = cells(each, '=');
    if (change.size() == 1) {
      made.resize(number<size_t>(change[0]));
    } else {
      zk::store_le32(&made.at(number<size_t>(change[0])), number32(change[1]));
    }
  }
  return made;
}

std::vector<uint8_t> boot_records_from_text(const std::string& size, const strings& records) {
  std::vector<uint8_t> disk(number<size_t>(size));
  for (const std::string& each : records) {
    const strings words = cells(each, ' ');
    const auto at = number<size_t>(words[0]);
    disk.resize(std::max(disk.size(), at + mbr_layout::size));
    uint8_t* const record = &disk[at];
    uint8_t* entry = record + mbr_layout::entries;
    for (size_t n = 1; n < words.size(); ++n) entry = put_word(record, entry, words[n]);
    record[mbr_layout::signature_at] = 0x55;
    record[mbr_layout::signature_at + 1] = 0xAA;
  }
  return disk;
}
