#include "tools/index_builder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cache/index_dat.h"
#include "cache/record_signature.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "text/le_bytes.h"
#include "time/zk_time.h"

namespace sample {
namespace {

constexpr uint8_t fill_pattern[] = {0xEF, 0xBE, 0xAD, 0xDE};
constexpr uint32_t unset = 0xDEADBEEF;

void put(byte_vector& bytes, size_t at, std::string_view text) {
  if (bytes.size() < at + text.size()) bytes.resize(at + text.size());
  std::copy(text.begin(), text.end(), bytes.begin() + static_cast<ptrdiff_t>(at));
}

void put32_at(byte_vector& bytes, size_t at, uint32_t value) {
  if (bytes.size() < at + 4) bytes.resize(at + 4);
  zk::store_le32(&bytes[at], value);
}

}  // namespace

uint64_t filetime_of(int year, int month, int day, int hour, int minute, int second) {
  zk::_windows_systemtime fields = {};
  fields.year = static_cast<uint16_t>(year);
  fields.month = static_cast<uint16_t>(month);
  fields.day = static_cast<uint16_t>(day);
  fields.hour = static_cast<uint16_t>(hour);
  fields.minute = static_cast<uint16_t>(minute);
  fields.second = static_cast<uint16_t>(second);
  uint64_t filetime = 0;
  zk::systemtime_to_filetime(fields, filetime);
  return filetime;
}

uint32_t dos_of(int year, int month, int day, int hour, int minute, int second) {
  const auto date = static_cast<uint32_t>((year - 1980) << 9 | month << 5 | day);
  const auto time = static_cast<uint32_t>(hour << 11 | minute << 5 | second / 2);
  return time << 16 | date;
}

record::record(std::string_view signature) {
  put(content, 0, signature);
}

record record::url(std::string_view address) {
  record made("URL ");
  made.content.resize(url_layout::fixed_size);
  made.append_string(url_layout::url_offset, address);
  return made;
}

record record::leak() {
  record made("LEAK");
  made.content.resize(url_layout::fixed_size);
  return made;
}

record record::redr(std::string_view address) {
  record made("REDR");
  made.content.resize(redr_layout::url);
  put(made.content, redr_layout::url, address);
  made.content.push_back(0);
  return made;
}

record& record::last_mod(uint64_t filetime) {
  put64(url_layout::last_mod, filetime);
  return *this;
}

record& record::access(uint64_t filetime) {
  put64(url_layout::access, filetime);
  return *this;
}

record& record::expires(uint32_t dos) {
  return put32(url_layout::expires, dos);
}
record& record::last_sync(uint32_t dos) {
  return put32(url_layout::last_sync, dos);
}
record& record::leak_access(uint32_t dos) {
  return put32(url_layout::leak_access, dos);
}
record& record::file_size(uint32_t bytes) {
  return put32(url_layout::file_size, bytes);
}
record& record::directory(uint8_t index) {
  return put8(url_layout::directory_index, index);
}
record& record::count(uint32_t times) {
  return put32(url_layout::count, times);
}

record& record::filename(std::string_view name) {
  append_string(url_layout::filename_offset, name);
  return *this;
}

record& record::header(std::string_view text, std::string_view user) {
  std::string span(text);
  if (!user.empty()) span += "~U:" + std::string(user) + "\r\n";
  span += '\0';
  put32(url_layout::header_length, static_cast<uint32_t>(span.size()));
  append_string(url_layout::header_offset, span);
  return *this;
}

record& record::put8(uint32_t at, uint8_t value) {
  const char byte = static_cast<char>(value);
  return put_text(at, {&byte, 1});
}

record& record::put32(uint32_t at, uint32_t value) {
  put32_at(content, at, value);
  count_by_hand = count_by_hand || at == url_layout::block_count;
  return *this;
}

record& record::put_text(uint32_t at, std::string_view text) {
  put(content, at, text);
  return *this;
}

record& record::blocks(uint32_t count) {
  wanted_blocks = count;
  return *this;
}

byte_vector record::bytes() const {
  byte_vector made = content;
  const size_t needed = (content.size() + block_size - 1) / block_size;
  const size_t count = std::max<size_t>(needed, wanted_blocks);
  for (size_t at = made.size(); at < count * block_size; ++at) {
    made.push_back(fill_pattern[at % sizeof fill_pattern]);
  }
  if (!count_by_hand) put32_at(made, url_layout::block_count, static_cast<uint32_t>(count));
  return made;
}

void record::put64(uint32_t at, uint64_t value) {
  put32_at(content, at, static_cast<uint32_t>(value));
  put32_at(content, at + 4, static_cast<uint32_t>(value >> 32));
}

void record::append_string(uint32_t field, std::string_view text) {
  put32(field, static_cast<uint32_t>(content.size()));
  put(content, content.size(), text);
  content.push_back(0);
}

index_file& index_file::directories(const std::vector<std::string>& names) {
  directory_names = names;
  return *this;
}

index_file& index_file::add(const record& added) {
  const byte_vector bytes = added.bytes();
  offsets.push_back(static_cast<uint32_t>(header_size + hash_block_size + records.size()));
  records.insert(records.end(), bytes.begin(), bytes.end());
  return *this;
}

byte_vector index_file::bytes() const {
  byte_vector made = header_bytes(directory_names, header_size + hash_block_size + records.size());
  const byte_vector hash = hash_block_bytes(offsets, 0);
  made.insert(made.end(), hash.begin(), hash.end());
  made.insert(made.end(), records.begin(), records.end());
  return made;
}

byte_vector header_bytes(const std::vector<std::string>& directories, uint64_t file_size) {
  byte_vector made;
  put(made, 0, "Client UrlCache MMF Ver 5.2");
  put32_at(made, 0x1C, static_cast<uint32_t>(file_size));
  put32_at(made, index_layout::first_hash, index_file::header_size);
  put32_at(made, index_layout::directory_count, static_cast<uint32_t>(directories.size()));
  for (size_t i = 0; i < directories.size(); ++i) {
    const size_t row = index_layout::directory_table + i * index_layout::directory_row_size;
    put(made, row, directories[i].substr(0, index_layout::directory_name_size));
    put32_at(made, row + index_layout::directory_name_size, 0);
  }
  if (made.size() < index_file::header_size) made.resize(index_file::header_size);
  return made;
}

byte_vector hash_block_bytes(const std::vector<uint32_t>& record_offsets, uint32_t next) {
  byte_vector made;
  put(made, 0, "HASH");
  put32_at(made, hash_layout::block_count, index_file::hash_block_size / block_size);
  put32_at(made, hash_layout::next, next);
  size_t entry = hash_layout::entries;
  const size_t listed = std::min<size_t>(record_offsets.size(), index_file::most_entries);
  for (size_t i = 0; i < listed; ++i, entry += hash_layout::entry_size) {
    put32_at(made, entry, static_cast<uint32_t>(i * 0x40 + 1));
    put32_at(made, entry + 4, record_offsets[i]);
  }
  for (; entry < index_file::hash_block_size; entry += 4) put32_at(made, entry, unset);
  return made;
}

}  // namespace sample
