// Builds index.dat records and files, for the sample maker and the tests.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sample {

using byte_vector = std::vector<uint8_t>;

// A FILETIME and a DOS pair (date word low) of a UTC moment.
uint64_t filetime_of(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
uint32_t dos_of(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

// One record. Strings are laid out after the fixed part in the order url, file name, header, and
// the offsets and the block count follow from them unless they are set by hand.
class record {
 public:
  static record url(std::string_view address);
  static record leak();
  static record redr(std::string_view address);

  record& last_mod(uint64_t filetime);
  record& access(uint64_t filetime);
  record& expires(uint32_t dos);
  record& last_sync(uint32_t dos);
  record& leak_access(uint32_t dos);
  record& file_size(uint32_t bytes);
  record& directory(uint8_t index);
  record& count(uint32_t times);
  record& filename(std::string_view name);
  // The header text, with its line ends, followed by the user marker.
  record& header(std::string_view text, std::string_view user = {});
  // A field, or a byte anywhere, whatever else it would be.
  record& put8(uint32_t at, uint8_t value);
  record& put32(uint32_t at, uint32_t value);
  record& put_text(uint32_t at, std::string_view text);
  // The record's size in blocks, for more room than the strings take.
  record& blocks(uint32_t count);

  // The bytes, a whole number of blocks, the rest filled with the format's pattern.
  byte_vector bytes() const;

 private:
  explicit record(std::string_view signature);
  void put64(uint32_t at, uint64_t value);
  // Appends a text with its NUL and stores its offset at `field`.
  void append_string(uint32_t field, std::string_view text);

  byte_vector content;
  uint32_t wanted_blocks = 0;
  bool count_by_hand = false;
};

// A whole index: header, directory table, a HASH block that lists the records, and the records.
class index_file {
 public:
  // Bytes before the first HASH block.
  static constexpr uint32_t header_size = 0x1000;
  static constexpr uint32_t hash_block_size = 0x1000;
  // The entries of a HASH block before its stop entry.
  static constexpr uint32_t most_entries = (hash_block_size - 0x10) / 8 - 1;

  index_file& directories(const std::vector<std::string>& names);
  index_file& add(const record& added);

  byte_vector bytes() const;

 private:
  std::vector<std::string> directory_names;
  std::vector<uint32_t> offsets;
  byte_vector records;
};

// The header of a file of `file_size` bytes, index_file::header_size long.
byte_vector header_bytes(const std::vector<std::string>& directories, uint64_t file_size);

// A HASH block that lists records at these offsets, `next` being the offset of the next block.
byte_vector hash_block_bytes(const std::vector<uint32_t>& record_offsets, uint32_t next);

}  // namespace sample
