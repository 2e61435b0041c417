// Writes a sample index.dat, the same bytes on every run; with a size, a large one, streamed.
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "tools/index_builder.h"
#include "tools/sample_records.h"

namespace {

constexpr const char* usage_text =
    "usage: make_sample FILE                          a small index with a record of each kind\n"
    "       make_sample --size N[K|M|G] FILE          packed with typical records, N bytes\n"
    "       make_sample --sparse --size N[K|M|G] FILE few records, noise between them\n";

bool read_size(const std::string& text, uint64_t& size) {
  size_t used = 0;
  try {
    size = std::stoull(text, &used);
  } catch (const std::exception&) {
    return false;
  }
  const std::string unit = text.substr(used);
  if (unit == "K") size <<= 10;
  if (unit == "M") size <<= 20;
  if (unit == "G") size <<= 30;
  return size > 0 && (unit.empty() || unit == "K" || unit == "M" || unit == "G");
}

void write(std::ostream& out, const sample::byte_vector& bytes, uint64_t most) {
  const auto count = std::min<uint64_t>(bytes.size(), most);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(count));
}

// What a used disk holds between records. The same bytes for the same seed.
void append_noise(sample::byte_vector& bytes, size_t count, uint64_t seed) {
  std::mt19937_64 random(seed);
  const size_t end = bytes.size() + count;
  bytes.resize(end);
  for (size_t at = end - count; at + sizeof(uint64_t) <= end; at += sizeof(uint64_t)) {
    const uint64_t bits = random();
    std::memcpy(&bytes[at], &bits, sizeof bits);
  }
}

// A HASH block and the records that it lists.
struct section {
  sample::byte_vector bytes;

  section(uint64_t at, uint64_t first_record, size_t count, size_t spare, bool last) {
    std::vector<uint32_t> offsets;
    sample::byte_vector records;
    for (size_t i = 0; i < count; ++i) {
      const sample::byte_vector record = sample::typical_record(first_record + i).bytes();
      const uint64_t offset = at + sample::index_file::hash_block_size + records.size();
      offsets.push_back(static_cast<uint32_t>(offset));
      records.insert(records.end(), record.begin(), record.end());
    }
    append_noise(records, spare, first_record);
    const uint64_t next = at + sample::index_file::hash_block_size + records.size();
    bytes = sample::hash_block_bytes(offsets, last ? 0 : static_cast<uint32_t>(next));
    bytes.insert(bytes.end(), records.begin(), records.end());
  }
};

void write_large(std::ostream& out, uint64_t size, bool sparse) {
  constexpr size_t noise_between = size_t{4} << 20;
  constexpr uint64_t farthest_link = 0xF0000000;  // offsets have 32 bits
  const size_t per_section = sparse ? 2 : sample::index_file::most_entries;
  const sample::byte_vector header = sample::header_bytes(sample::directory_names(), size);
  write(out, header, size);
  uint64_t at = header.size();
  for (uint64_t n = 0; at < size && out; n += per_section) {
    const section next(at, n, per_section, sparse ? noise_between : 0, at > farthest_link);
    write(out, next.bytes, size - at);
    at += next.bytes.size();
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string path;
  uint64_t size = 0;
  bool sparse = false;
  bool understood = true;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--sparse") {
      sparse = true;
    } else if (argument == "--size" && i + 1 < argc) {
      understood = read_size(argv[++i], size) && understood;
    } else {
      understood = path.empty() && !argument.starts_with("--") && understood;
      path = argument;
    }
  }
  if (!understood || path.empty() || (sparse && size == 0)) {
    std::cerr << usage_text;
    return 2;
  }
  std::ofstream out(path, std::ios::binary);
  if (size != 0) {
    write_large(out, size, sparse);
  } else {
    const sample::byte_vector bytes = sample::small_index().bytes();
    write(out, bytes, bytes.size());
  }
  out.close();
  if (!out) {
    std::cerr << "make_sample: can't write " << path << ": " << std::strerror(errno) << "\n";
    return 1;
  }
  return 0;
}
