#include "cache/url_record.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "cache/record_signature.h"
#include "text/zk_string.h"

namespace {

constexpr std::string_view user_marker = "~U:";

// The record's bytes while it is being decoded: `begin` to `end` may be read, and the first `room`
// of them are the record's own, up to the next record.
struct record_bytes {
  uint8_t* begin;
  const uint8_t* end;
  uint32_t room;

  std::string_view string_at(uint32_t at) const { return zk::bounded_string(begin + at, end); }
};

// Finds the room, and corrects the block count where another record ends it.
record_bytes bytes_of_record(uint8_t* begin, uint32_t limit) {
  const uint32_t next = find_next_record(begin, limit);
  if (next == no_record) return {begin, begin + limit, limit};
  zk::store_le32(begin + url_layout::block_count, next / block_size);
  return {begin, begin + limit, next};
}

void replace_separators(std::string& text) {
  zk::replace_chars(text, [](char c) {
    c = c == '\r' ? ' ' : c;
    // No choice within the condition, which makes for the shortest vector code.
    const bool ends_something = (c == ',') | (c == '\n');
    return ends_something ? ';' : c;
  });
}

// Fills an empty string with a text as clean_text leaves it.
void put_clean(std::string& empty, std::string_view text) {
  empty.append(zk::trimmed(text));
  replace_separators(empty);
}

// False if the record has no usable URL offset. `whole` tells whether the URL fits the room.
bool read_url(url_record& record, const record_bytes& bytes, bool& whole) {
  const uint32_t at = record.field32(url_layout::url_offset);
  if (at == 0 || at >= bytes.room) return false;
  const uint32_t left = bytes.room - at;
  // No more than the first byte past the room decides, so nothing is read behind it.
  const uint8_t* const begin = bytes.begin + at;
  const auto readable = static_cast<uint64_t>(bytes.end - begin);
  const std::string_view text =
      zk::bounded_string(begin, begin + std::min<uint64_t>(readable, left + 1ULL));
  whole = static_cast<int32_t>(left) >= static_cast<int32_t>(text.size());
  put_clean(record.url, text.substr(0, left));
  return true;
}

// Reads the header span, and the user from its marker. False if the span is empty.
bool read_header_text(url_record& record, const record_bytes& bytes) {
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

  const uint8_t* const text = bytes.begin + start;
  const std::string_view span(reinterpret_cast<const char*>(text), length);
  const size_t marker = span.find(user_marker);
  if (marker != std::string_view::npos) {
    const size_t nul = std::min(span.find('\0', marker), span.size());
    const size_t user_at = marker + user_marker.size();
    record.user.append(zk::trimmed(span.substr(user_at, nul - user_at)));
    length = static_cast<uint32_t>(marker);
  }
  zk::printable_text(record.http_header, text, length, false, ' ');
  clean_text(record.http_header);
  if (length == 0) record.http_header = record.user = "-";
  return true;
}

}  // namespace

void clean_text(std::string& text) {
  zk::trim(text);
  replace_separators(text);
}

bool decode_url_record(url_record& record, uint8_t* bytes, uint64_t offset, uint32_t limit,
                       uint8_t /*flag*/) {
  record.url.clear();  // the strings keep their memory
  record.filename.clear();
  record.http_header.clear();
  record.user.clear();
  record.offset = static_cast<uint32_t>(offset);
  record.in_gap = false;
  const uint32_t size = url_layout::fixed_size;
  const bool fits = bytes && limit >= size && offset <= limit - size;
  record.valid = fits && is_url_or_leak(zk::load_le32(bytes + offset));
  if (!record.valid) {
    record.fixed = {};
    return false;
  }
  uint8_t* const begin = bytes + offset;
  std::memcpy(record.fixed.data(), begin, size);

  const record_bytes own = bytes_of_record(begin, limit - static_cast<uint32_t>(offset));
  // A LEAK record has no URL, and only a record whose URL fitted has a header and a user.
  bool whole = false;
  if (record.signature() == url_signature && !read_url(record, own, whole)) return false;
  if (const uint32_t at = record.field32(url_layout::filename_offset); at != 0 && at < own.room) {
    // Deliberate: not cut to the room, so it may run on beyond the next record.
    put_clean(record.filename, own.string_at(at));
  }
  return !whole || read_header_text(record, own);
}
