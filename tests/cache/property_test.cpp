// Random indexes, some of them damaged, down each of the three roads, against a model of which rows
// must come of their bytes. The model decodes them itself.
#include <gtest/gtest.h>

#include <ctime>
#include <map>
#include <random>

#include "cache/parse_input.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "text/zk_wide.h"
#include "tools/index_builder.h"
#include "tools/vmdk_builder.h"

namespace {

using sample::byte_vector;
using sample::record;
using std::string;

// The text without the blanks around it, and in place of each character of `from` that of `to`.
string cleaned(const string& text, const string& from = ",\r\n", const string& to = "; ;") {
  const size_t first = std::min(text.find_first_not_of(" \t\r\n"), text.size());
  string made = text.substr(first, text.find_last_not_of(" \t\r\n") + 1 - first);
  for (char& c : made) c = from.find(c) < from.size() ? to[from.find(c)] : c;
  return made;
}

string filetime_cells(uint64_t value) {
  if (value == 0 || value == 0xDEADBEEFDEADBEEF) return ",";
  const auto seconds = static_cast<time_t>(value / 10000000 - 11644473600);
  char text[99];
  std::strftime(text, sizeof text, "%F,%T.000 UTC", std::gmtime(&seconds));
  return text;
}

string dos_cells(uint32_t value) {
  if (value == 0 || (value & 0xFFFF) == 0xBEEF) return ",";
  char text[99];
  std::snprintf(text, sizeof text, "%u-%02u-%02u,%02u:%02u:%02u.000 UTC", 1980 + (value >> 9 & 127),
                value >> 5 & 15, value & 31, value >> 27, value >> 21 & 63, value >> 15 & 62);
  return text;
}

struct RandomIndexes : testing::Test {
  const temp_dir dir;
  uint32_t seed = 0;
  std::mt19937 random;
  byte_vector bytes;
  bool whole_file = false, any_signature = false;
  string titles = header_line, source;  // the name in the rows
  cmd_opts opts;

  uint32_t pick(uint64_t n) { return static_cast<uint32_t>(random() % n); }
  bool once_in(uint32_t n) { return pick(n) == 0; }
  template <class Value>
  Value one_of(std::initializer_list<Value> values) {
    return values.begin()[pick(values.size())];
  }

  string next_text(uint32_t most) {
    static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz/.:?=&% ,\n\r\x80";  // and a NUL
    string text(pick(most) + 1, ' ');
    for (char& c : text) c = letters[pick(sizeof letters)];
    return text;
  }
  // A time that was never set, one that a pattern fills, or a real one.
  uint64_t next_filetime() {
    const uint64_t real = (12622780800 + pick(946080000)) * 10000000;  // 2001 to 2030
    return one_of({uint64_t{0}, uint64_t{0xDEADBEEFDEADBEEF}, real, real});
  }
  uint32_t next_dos() {
    const uint32_t real =
        sample::dos_of(2001 + pick(30), 1 + pick(12), 1 + pick(28), pick(24), pick(60), pick(60));
    return one_of({0u, 0x1234BEEFu, real, real});
  }

  // A random record, in some of whose fields stands what its maker didn't mean.
  byte_vector next_record() {
    const string url = next_text(once_in(20) ? 1200 : 150);
    record built = once_in(5) ? record::redr(url) : record::url(url);
    if (built.bytes()[0] == 'U') {
      if (once_in(4)) built.put_text(0, "LEAK");
      built.last_mod(next_filetime()).access(next_filetime()).expires(next_dos());
      built.last_sync(next_dos()).leak_access(next_dos()).file_size(pick(1ULL << 32));
      built.count(once_in(4) ? 0xDEADBEEF : pick(1000)).put8(0x38, static_cast<uint8_t>(pick(6)));
      if (!once_in(4)) built.filename(next_text(40));
      if (!once_in(4))
        built.header(one_of({"", "HTTP/1.1 200 OK\r\nETag: a,b\r\n\r\n", " \x7F\x80 x \r\n"}),
                     one_of({"", "alice", " b,c\n "}));
      const auto room = static_cast<uint32_t>(built.bytes().size());
      for (const uint32_t at : {0x34u, 0x3Cu, 0x44u, 0x48u})
        if (once_in(6))
          built.put32(at, one_of({0u, 1u, 104u, 120u, room - 104, room - 103, room - 1, room,
                                  room + 1, 0x7FFFFFFFu}));
    }
    if (once_in(6)) built.blocks(1 + pick(9));
    if (once_in(10)) built.put32(4, one_of({0u, 9u, 10u, 13u, 300u, 0x0A0A0A0Au, 0xFFFFFFFFu}));
    return built.bytes();
  }

  // Lays records down from `at` to `end`, the last perhaps beyond it: on the grid or off it, by
  // `skew` or anyhow, some inside the one before, with noise between.
  void fill(uint64_t at, uint64_t end, uint64_t skew = 0) {
    while (at < end) {
      const uint64_t place = at + (!once_in(15) ? 0 : skew != 0 ? skew : 4 + pick(120));
      const byte_vector added = next_record();
      bytes.resize(std::max<uint64_t>(bytes.size(), (place + added.size() + 127) / 128 * 128));
      std::copy(added.begin(), added.end(), &bytes[place]);
      at = once_in(6) ? place + 128 + pick(added.size() / 128) * 128 : bytes.size();
      if (once_in(8))
        bytes.resize(at = bytes.size() + (1 + pick(8)) * 128, one_of({uint8_t{0}, uint8_t{'x'}}));
    }
  }
  // An index, or records from the very first block on. Damage leaves the times alone.
  void fill_index(uint64_t end) {
    random.seed(seed);
    strings directories(pick(6));
    for (string& name : directories) name = string(1 + pick(8), static_cast<char>('A' + pick(26)));
    bytes = sample::header_bytes(directories, end);
    if (once_in(5)) bytes.clear();
    fill(bytes.empty() ? 0 : 8192, end);
    for (uint32_t flips = once_in(3) ? pick(40) : 0; flips > 0; --flips) {
      const uint64_t block = once_in(9) ? 0 : pick(bytes.size() / 128), at = pick(60);
      uint8_t& damaged = bytes[block * 128 + (at < 8 ? at : at + 20)];
      damaged = static_cast<uint8_t>(damaged ^ 1 << pick(8));
    }
  }

  bool has_signature() const { return string(&bytes[0], &bytes[15]) == "Client UrlCache"; }
  // The name at an index of the directory table; none where the whole table doesn't fit the file.
  string directory(uint64_t index) const {
    const uint64_t at = 80 + index * 12, count = zk::load_le32(&bytes[0x48]);
    const bool fits = whole_file && has_signature() && 80 + count * 12 < bytes.size();
    return fits && index < count ? string(&bytes[at], &bytes[at + 8]) : "";
  }

  // The row of the record at `at`, of which the bytes to `end` can be read and those to `next` are
  // its own; none if it must be refused.
  string row(uint64_t at, uint64_t next, uint64_t end) const {
    string all(&bytes[at], &bytes[at] + (end - at)), url, name, header, user;
    const string type = all.substr(0, 4);
    const auto field = [&](uint64_t from) { return zk::load_le32(&bytes[at + from]); };
    const auto time = [&](uint64_t from) { return field(from) | uint64_t{field(from + 4)} << 32; };
    if (all.size() < (type == "REDR" ? 17 : 104) || field(4) >= 10) return "";
    if (type == "REDR")
      return ",,,,,,,,REDR," + cleaned(&all[16], ",", "_") + ",,,0," + directory(254) + ",0,,";

    const uint32_t room = static_cast<uint32_t>(next - at), url_at = field(0x34),
                   name_at = field(0x3C), span = field(0x44), length = field(0x48);
    if (next < end) all.replace(4, 4, {static_cast<char>(room / 128), 0, 0, 0});
    bool whole = false;
    if (type == "URL ") {
      if (url_at == 0 || url_at >= room) return "";
      url = &all[url_at];
      whole = url.size() <= room - url_at;
      url = cleaned(url.substr(0, room - url_at));
    }
    if (name_at != 0 && name_at < room) name = cleaned(&all[name_at]);
    const bool anywhere = span == 0 || span > room;
    const uint64_t from = anywhere ? 104 : span, taken = anywhere ? room - 104 : length;
    if (whole && length <= room - 104 && from + taken <= room) {
      if (taken == 0) return "";
      header = all.substr(from, taken);
      const size_t marker = header.find("~U:");
      if (marker != string::npos) user = cleaned(&header[marker + 3], "", "");
      header = string(header, 0, marker).c_str();
      for (char& c : header) c = c < ' ' || c > '~' ? ' ' : c;
      header = marker == 0 ? user = "-" : cleaned(header);
    }
    string modified = filetime_cells(time(0x08)), access = filetime_cells(time(0x10)), made;
    const bool in_url = url.size() > 19 && url[0] == ':' && url.substr(17, 2) == "; ";
    if ((in_url || source.ends_with("MSHist")) && modified != ",") modified.replace(24, 3, "local");
    if (type == "LEAK" && access == ",") access = dos_cells(field(0x5C));
    const uint32_t count = field(0x54) == 0xDEADBEEF ? 0 : field(0x54);
    for (const string& cell :
         {modified, access, dos_cells(field(0x18)), dos_cells(field(0x50)), type, url, user, name,
          std::to_string(field(0x20)), directory(bytes[at + 0x38]), std::to_string(count), header})
      made += cell + ",";
    return made;
  }

  // Expects all rows of a search in blocks of `step` and an overlap; without one, of a file that is
  // read whole. The first block in which a record is accepted decides what becomes of it.
  void check(uint64_t step, uint64_t overlap) {
    std::map<uint64_t, string> rows;
    const auto search = [&](uint64_t begin, uint64_t end) {
      uint64_t next = end;
      for (uint64_t at = begin + (end - begin) / 128 * 128; at > begin; at -= 128) {
        const string four(&bytes[at], &bytes[at] + (at + 4 < end ? 4 : 0));
        if (four != "URL " && four != "LEAK" && four != "REDR") continue;
        const string made = row(at, next, end);
        if (!made.empty()) rows.try_emplace(at, made + source + "\n");
        next = at;
      }
    };
    whole_file = overlap == 0;
    for (uint64_t begin = 0; begin + overlap < bytes.size(); begin += step)
      search(begin, std::min<uint64_t>(bytes.size(), begin + step + overlap));
    search(bytes.size() - overlap, bytes.size());  // a file's end comes once more
    // From the first right signature on no file needs one.
    any_signature = any_signature || (whole_file && has_signature());
    if (whole_file && !any_signature) rows.clear();
    string expected = std::exchange(titles, "");
    for (const auto& [at, made] : rows) expected += made;
    std::ostringstream out;
    testing::internal::CaptureStderr();
    EXPECT_EQ(parse_input(out, opts), !whole_file || !rows.empty());
    testing::internal::GetCapturedStderr();
    ASSERT_EQ(out.str(), expected) << "seed " << seed;
  }
};

TEST_F(RandomIndexes, ReadWhole) {
  for (; seed < 600 && !HasFailure(); ++seed) {
    fill_index(8192 + pick(20000));
    const uint32_t rest = one_of({0u, 4u, 5u, 16u, 17u, 103u, 104u, pick(128)});
    bytes.resize(bytes.size() - pick(5) * 128 + rest);  // cut, or with zeros behind
    opts.input_path = source = dir.write(once_in(4) ? "MSHist" : "f", bytes);
    check(bytes.size(), 0);
  }
}

TEST_F(RandomIndexes, ReadAsALargeFile) {
  for (; seed < 40 && !HasFailure(); ++seed) {
    fill_index(150000);
    const uint64_t size = 0x1000001 + pick(70000), tail = (size - 3000 - pick(6000)) / 128 * 128;
    fill(tail, size, size % 128);  // where the last block has its own grid
    bytes.resize(size);
    opts.input_path = source = dir.write("f", bytes);
    check(28672, 4096);
  }
}

TEST_F(RandomIndexes, ReadFromADisk) {
  for (; seed < 60 && !HasFailure(); ++seed) {
    fill_index(300000);
    bytes.resize(458752);  // the disk's size
    vmdk_builder base{vmdk_builder::keys("b", "ffffffff"), {}, 1},
        leaf{vmdk_builder::keys("l", "b"), {}, 1};
    for (uint32_t n = 0, kind; n < 112; ++n) {
      const byte_vector grain(&bytes[n * 4096], &bytes[n * 4096] + 4096);
      kind = pick(4);
      if (kind < 2 && grain != byte_vector(4096)) base.grains[n] = grain;
      if (kind > 1) leaf.grains[n] = grain;
      if (kind > 2) base.grains[n] = leaf.grains.begin()->second;  // what must not be seen
    }
    bytes.resize(495616);  // beyond its end the last read finds zeros
    const string newest = dir.write("leaf", leaf.bytes()), oldest = dir.write("base", base.bytes());
    opts.vmdk_paths = {zk::utf8_to_wide(newest), zk::utf8_to_wide(oldest)};
    source = newest + "; " + oldest;
    check(61440, 4096);
  }
}

}  // namespace
