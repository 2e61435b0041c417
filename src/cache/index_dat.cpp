#include "cache/index_dat.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

#include "cache/record_signature.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"
#include "text/le_bytes.h"

namespace {

constexpr std::string_view signature_prefix = "Client UrlCache";

// Decodes the record that an entry points to. Entries that point nowhere are skipped.
void read_entry(hash_block& block, hash_entry entry, uint8_t* bytes, uint64_t size) {
  if (entry.record_offset >= size || size - entry.record_offset < 4) return;
  const auto limit =
      static_cast<uint32_t>(std::min<uint64_t>(size, std::numeric_limits<uint32_t>::max()));
  const uint32_t signature = zk::load_le32(bytes + entry.record_offset);
  if (signature == redr_signature) {
    block.entries.push_back(entry);
    redr_record record;
    decode_redr_record(record, bytes, entry.record_offset, limit);
    if (record.valid) block.redr_records.push_back(record);
  } else if (is_url_or_leak(signature)) {
    block.entries.push_back(entry);
    url_record record;
    decode_url_record(record, bytes, entry.record_offset, limit, 1);
    if (record.valid) block.url_records.push_back(record);
  }
}

}  // namespace

bool read_header(cache_container& container, const uint8_t* bytes, uint32_t size) {
  if (size < index_layout::header_size || !bytes) return false;
  std::memcpy(container.header.data(), bytes, container.header.size());
  container.parsed = std::memcmp(bytes, signature_prefix.data(), signature_prefix.size()) == 0;
  return container.parsed;
}

uint32_t range_fits(const uint8_t* base, const uint8_t* span, uint64_t need, uint64_t size) {
  if (!base || !span || size == 0 || size < need || span < base) return 0;
  const auto distance = static_cast<uint64_t>(span - base);
  return distance < size - need ? static_cast<uint32_t>(distance) : 0;
}

bool classify_path(cmd_opts& opts) {
  static constexpr struct {
    std::string_view name;
    uint32_t kind;
  } kinds[] = {{"MSHist", file_kind::mshist},
               {"History", file_kind::history},
               {"Temporary Internet Files", file_kind::temporary_internet_files},
               {"Cookies", file_kind::cookies},
               {"Temp", file_kind::temp}};
  if (opts.input_path.empty()) return false;
  opts.file_kind = file_kind::other;
  for (const auto& [name, kind] : kinds) {
    if (opts.input_path.find(name) == std::string::npos) continue;
    opts.file_kind = kind;
    return true;
  }
  return false;
}

bool read_directories(cache_container& container, const uint8_t* bytes, uint32_t size) {
  const uint32_t count = zk::load_le32(bytes + index_layout::directory_count);
  if (count == 0) return true;
  const uint64_t need = uint64_t{count} * index_layout::directory_row_size;
  const uint8_t* row = bytes + index_layout::directory_table;
  if (range_fits(bytes, row, need, size) == 0) return false;
  container.directories.reserve(count);
  for (uint32_t i = 0; i < count; ++i, row += index_layout::directory_row_size) {
    container.directories.emplace_back(reinterpret_cast<const char*>(row),
                                       index_layout::directory_name_size);
  }
  return true;
}

bool attach_directories(cache_container& container, std::vector<std::string>& directories,
                        const uint8_t* bytes, uint32_t size) {
  container = {};
  if (!read_header(container, bytes, size)) return false;
  if (!read_directories(container, bytes, size)) return false;
  // A row's index is a byte, so no later name is ever asked for.
  const size_t count = std::min<size_t>(container.directories.size(), 256);
  const auto first = container.directories.begin();
  directories.assign(first, first + static_cast<ptrdiff_t>(count));
  return true;
}

bool read_hash_block(hash_block& block, uint8_t* bytes, uint64_t offset, uint64_t size) {
  block = {};
  if (!bytes || size < hash_layout::header_size || offset > size - hash_layout::header_size) {
    return false;
  }
  const uint8_t* const begin = bytes + offset;
  if (zk::load_le32(begin) != hash_signature) return false;
  std::memcpy(block.fixed.data(), begin, block.fixed.size());
  // The length wraps at 32 bits.
  const uint32_t length = zk::load_le32(begin + hash_layout::block_count) * block_size;
  if (size < length) return false;
  const uint8_t* entry = begin + hash_layout::entries;
  if (range_fits(bytes, entry, hash_layout::entry_size, size) == 0) return false;
  do {
    const uint32_t key = zk::load_le32(entry);
    if (key == hash_layout::end_key) break;
    read_entry(block, {key, zk::load_le32(entry + 4)}, bytes, size);
    entry += hash_layout::entry_size;
  } while (range_fits(bytes, entry, hash_layout::entry_size, size) != 0);
  block.parsed = true;
  return true;
}
