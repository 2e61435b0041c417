#include "tools/random_index_builder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/index_builder.h"

namespace sample {

std::string random_index_builder::next_text(uint32_t most) {
  static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz/.:?=&% ,\n\r\x80";  // and a NUL
  std::string text(pick(most) + 1, ' ');
  for (char& c : text) c = letters[pick(sizeof letters)];
  return text;
}

// A time that was never set, one that a pattern fills, or a real one.
uint64_t random_index_builder::next_filetime() {
  const uint64_t real = (12622780800 + pick(946080000)) * 10000000;  // 2001 to 2030
  return one_of({uint64_t{0}, uint64_t{0xDEADBEEFDEADBEEF}, real, real});
}

uint32_t random_index_builder::next_dos() {
  const auto less_than = [&](uint32_t limit) { return static_cast<int>(pick(limit)); };
  const uint32_t real = dos_of(2001 + less_than(30), 1 + less_than(12), 1 + less_than(28),
                               less_than(24), less_than(60), less_than(60));
  return one_of({0u, 0x1234BEEFu, real, real});
}

// A random record, some of its fields damaged.
byte_vector random_index_builder::next_record() {
  const std::string url = next_text(once_in(20) ? 1200 : 150);
  record built = once_in(5) ? record::redr(url) : record::url(url);
  if (built.bytes()[0] == 'U') {
    if (once_in(4)) built.put_text(0, "LEAK");
    built.last_mod(next_filetime()).access(next_filetime()).expires(next_dos());
    built.last_sync(next_dos()).leak_access(next_dos()).file_size(pick(1ULL << 32));
    built.count(once_in(4) ? 0xDEADBEEF : pick(1000)).put8(0x38, static_cast<uint8_t>(pick(6)));
    if (!once_in(4)) built.filename(next_text(40));
    if (!once_in(4)) {
      built.header(one_of({"", "HTTP/1.1 200 OK\r\nETag: a,b\r\n\r\n", " \x7F\x80 x \r\n"}),
                   one_of({"", "alice", " b,c\n "}));
    }
    const auto room = static_cast<uint32_t>(built.bytes().size());
    for (const uint32_t at : {0x34u, 0x3Cu, 0x44u, 0x48u}) {
      if (!once_in(6)) continue;
      built.put32(at, one_of({0u, 1u, 104u, 120u, room - 104, room - 103, room - 1, room, room + 1,
                              0x7FFFFFFFu}));
    }
  }
  if (once_in(6)) built.blocks(1 + pick(9));
  if (once_in(10)) built.put32(4, one_of({0u, 9u, 10u, 13u, 300u, 0x0A0A0A0Au, 0xFFFFFFFFu}));
  return built.bytes();
}

void random_index_builder::fill(size_t at, size_t end, size_t skew) {
  while (at < end) {
    const size_t place = at + (!once_in(15) ? 0 : skew != 0 ? skew : 4 + pick(120));
    const byte_vector added = next_record();
    bytes.resize(std::max(bytes.size(), (place + added.size() + 127) / 128 * 128));
    std::copy(added.begin(), added.end(), &bytes[place]);
    at = once_in(6) ? place + 128 + size_t{pick(added.size() / 128)} * 128 : bytes.size();
    if (once_in(8)) {
      at = bytes.size() + (size_t{1} + pick(8)) * 128;
      bytes.resize(at, one_of({uint8_t{0}, uint8_t{'x'}}));
    }
  }
}

void random_index_builder::fill_index(size_t end) {
  random.seed(seed);
  std::vector<std::string> directories(pick(6));
  for (std::string& name : directories)
    name = std::string(1 + pick(8), static_cast<char>('A' + pick(26)));
  bytes = header_bytes(directories, end);
  if (once_in(5)) bytes.clear();
  fill(bytes.empty() ? 0 : 8192, end);
  for (uint32_t flips = once_in(3) ? pick(40) : 0; flips > 0; --flips) {
    const size_t block = once_in(9) ? 0 : pick(bytes.size() / 128);
    const size_t at = pick(60);
    uint8_t& damaged = bytes[block * 128 + (at < 8 ? at : at + 20)];
    damaged = static_cast<uint8_t>(damaged ^ 1 << pick(8));
  }
}

}  // namespace sample
