#include "cache/url_record.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "cache/record_signature.h"
#include "text/le_bytes.h"
#include "text/zk_string.h"

namespace {

constexpr std::string_view user_marker = "~U:";

// The record's bytes while it is being decoded: `begin` to `end` may be read, and the first `room`
// of them are the record's own, up to the next signature.
struct record_bytes {
  uint8_t* begin;
  const uint8_t* end;
  uint32_t room;

  std::string_view string_at(uint32_t at) const { return zk::bounded_string(begin + at, end); }
};

bool is_url_record(const uint8_t* bytes, uint32_t limit) {
  return limit >= url_layout::fixed_size && is_url_or_leak(zk::load_le32(bytes));
}

// A header text without what isn't shown at both ends.
std::string_view trimmed_header(std::string_view text) {
  const auto shown = [](char c) { return c > ' ' && c <= '~'; };
  while (!text.empty() && !shown(text.back())) text.remove_suffix(1);
  while (!text.empty() && !shown(text.front())) text.remove_prefix(1);
  return text;
}

// False if the record has no usable URL offset. `whole` tells whether the URL fits the room.
bool find_url(url_record& record, const record_bytes& bytes, bool& whole) {
  const uint32_t at = record.field32(url_layout::url_offset);
  if (at == 0 || at >= bytes.room) return false;
  const uint32_t left = bytes.room - at;
  // One byte beyond the room tells whether the URL ends there.
  const uint8_t* const begin = bytes.begin + at;
  const auto readable = static_cast<uint64_t>(bytes.end - begin);
  const std::string_view text =
      zk::bounded_string(begin, begin + std::min<uint64_t>(readable, left + 1ULL));
  whole = static_cast<int32_t>(left) >= static_cast<int32_t>(text.size());
  record.url = zk::trimmed(text.substr(0, left));
  return true;
}

// Finds the header text, and the user after its marker. False if the header span is empty.
bool find_header(url_record& record, const record_bytes& bytes) {
  uint32_t length = record.field32(url_layout::header_length);
  uint32_t start = record.field32(url_layout::header_offset);
  const uint32_t room = bytes.room;
  if (room - url_layout::fixed_size < length) return true;
  if (start == 0 || room < start) {
    start = url_layout::fixed_size;
    length = room - url_layout::fixed_size;
  }
  if (start + length > room) return true;
  length = std::min(length, room - start);  // beyond 2 GiB the sum may have wrapped
  if (length == 0) return false;

  std::string_view header(reinterpret_cast<const char*>(bytes.begin + start), length);
  if (const size_t marker = header.find(user_marker); marker != std::string_view::npos) {
    const std::string_view behind = header.substr(marker + user_marker.size());
    record.user = zk::trimmed(behind.substr(0, behind.find('\0')));
    header = header.substr(0, marker);
    // Deliberate: "-" replaces the user too, though one was found.
    if (header.empty()) header = record.user = "-";
  }
  record.http_header = trimmed_header(header.substr(0, header.find('\0')));
  return true;
}

}  // namespace

bool decode_url_record(url_record& record, uint8_t* bytes, uint64_t offset, uint32_t limit,
                       uint8_t /*flag*/) {
  record = {};
  record.offset = static_cast<uint32_t>(offset);
  if (!bytes || offset > limit) return false;
  uint8_t* const begin = bytes + offset;
  const uint32_t left = limit - static_cast<uint32_t>(offset);
  record.valid = is_url_record(begin, left);
  if (!record.valid) return false;
  std::memcpy(record.fixed.data(), begin, url_layout::fixed_size);
  const uint32_t next = find_next_record(begin, left);
  if (next != no_record) zk::store_le32(begin + url_layout::block_count, next / block_size);

  const record_bytes own = {begin, begin + left, next == no_record ? left : next};
  // A LEAK record has no URL, and only a record whose URL fitted has a header and a user.
  bool whole = false;
  if (record.signature() == url_signature && !find_url(record, own, whole)) return false;
  if (const uint32_t at = record.field32(url_layout::filename_offset); at != 0 && at < own.room) {
    // Deliberate: not cut to the room, so it may run on beyond the next record.
    record.filename = zk::trimmed(own.string_at(at));
  }
  return !whole || find_header(record, own);
}
