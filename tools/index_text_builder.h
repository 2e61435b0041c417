// Bytes from text, for the tables of cases: pieces that follow one another, and changes to
// the piece before. No byte after the last may be read, which the sanitizer build sees.
//
//   url TEXT, redr TEXT, leak   a record, in whole blocks
//   roomy                       a URL record of 384 bytes, dots from 105 on, its URL the last one
//   hash OFFSET OFFSET          a HASH block of 4096 bytes that lists records there
//   text TEXT                   what it says
//   header TEXT                 change: the header of a roomy record
//   AT:TEXT                     change: the bytes there
//   AT=NUMBER, NAME=NUMBER      change: a field of 4 bytes, or of 8 if it takes them
//   size NUMBER                 cuts the whole, or fills it up with NULs
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tools/case_file.h"
#include "tools/index_builder.h"

class index_text_builder {
 public:
  explicit index_text_builder(const strings& parts) {
    for (const std::string& part : parts) add(part);
    bytes.shrink_to_fit();
  }

  uint8_t* data() { return bytes.data(); }
  uint32_t size() const { return static_cast<uint32_t>(bytes.size()); }

 private:
  sample::byte_vector bytes;
  size_t begin = 0;  // of the last piece

  void put(size_t at, std::string_view text) {
    bytes.resize(std::max(bytes.size(), begin + at + text.size()));
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<ptrdiff_t>(begin + at));
  }

  void put_number(const std::string& field, uint64_t value) {
    static const std::map<std::string, size_t> fields = {
        {"blocks", 0x04},     {"last_mod", 0x08}, {"access", 0x10},    {"expires", 0x18},
        {"file_size", 0x20},  {"url_at", 0x34},   {"directory", 0x38}, {"name_at", 0x3C},
        {"header_at", 0x44},  {"length", 0x48},   {"last_sync", 0x50}, {"count", 0x54},
        {"leak_access", 0x5C}};
    const auto named = fields.find(field);
    std::string text;
    for (; value != 0 || text.size() < 4; value >>= 8) text += static_cast<char>(value);
    put(named != fields.end() ? named->second : number(field), text);
  }

  static sample::byte_vector piece(const std::string& kind, const std::string& text) {
    using sample::record;
    if (kind == "url") return record::url(text).bytes();
    if (kind == "redr") return record::redr(text).bytes();
    if (kind == "leak") return record::leak().bytes();
    if (kind == "text") return {text.begin(), text.end()};
    if (kind == "roomy") {
      return record::url("u").put32(0x34, 383).put_text(105, std::string(279, '.')).bytes();
    }
    if (kind != "hash") throw std::invalid_argument("unknown piece: " + kind);
    std::vector<uint32_t> offsets;
    for (const std::string& offset : cells(text, ' ')) offsets.push_back(number32(offset));
    return sample::hash_block_bytes(offsets, 0);
  }

  void add(const std::string& part) {
    const size_t gap = std::min(part.find_first_of(" =:"), part.size());
    const std::string word = part.substr(0, gap);
    const std::string rest = part.substr(gap).erase(0, 1);
    if (part[gap] == '=') {
      put_number(word, number(rest));
    } else if (part[gap] == ':') {
      put(number(word), rest);
    } else if (word == "size") {
      bytes.resize(number(rest));
    } else if (word == "header") {
      put(130, rest);
      put_number("header_at", 130);
      put_number("length", rest.size());
    } else {
      begin = bytes.size();
      const sample::byte_vector added = piece(word, rest);
      bytes.insert(bytes.end(), added.begin(), added.end());
    }
  }
};
