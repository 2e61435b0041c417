// Random indexes, some of them damaged, through each of the three readers, against a model of which
// rows must come of their bytes. The model decodes them itself.
#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <sstream>
#include <utility>

#include "cache/parse_input.h"
#include "opts/cmd_opts.h"
#include "tests/support/check_cases.h"
#include "tests/support/shown.h"
#include "tests/support/temp_dir.h"
#include "text/le_bytes.h"
#include "text/zk_wide.h"
#include "tools/index_builder.h"
#include "tools/random_index_builder.h"
#include "tools/vmdk_builder.h"
#include "uni/fileio_output.h"

namespace {

using sample::byte_vector;
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

struct RandomIndexes : testing::Test, sample::random_index_builder {
  const temp_dir dir;
  bool whole_file = false;
  bool any_signature = false;
  string titles = header_line;
  string source;  // the name in the rows
  cmd_opts opts;

  bool has_signature() const { return string(&bytes[0], &bytes[15]) == "Client UrlCache"; }
  // The name at an index of the directory table; none where the whole table doesn't fit the file.
  string directory(uint64_t index) const {
    const uint64_t at = 80 + index * 12;
    const uint64_t count = zk::load_le32(&bytes[0x48]);
    const bool fits = whole_file && has_signature() && 80 + count * 12 < bytes.size();
    return fits && index < count ? string(&bytes[at], &bytes[at + 8]) : "";
  }

  // The row of the record at `at`, of which the bytes to `end` can be read and those to `next` are
  // its own; none if it must be refused.
  string row(uint64_t at, uint64_t next, uint64_t end) const {
    string all(&bytes[at], &bytes[at] + (end - at));
    const string type = all.substr(0, 4);
    const auto field = [&](uint64_t from) { return zk::load_le32(&bytes[at + from]); };
    const auto time = [&](uint64_t from) { return field(from) | uint64_t{field(from + 4)} << 32; };
    if (all.size() < (type == "REDR" ? 17 : 104) || field(4) >= 10) return "";
    if (type == "REDR") {
      return ",,,,,,,,REDR," + cleaned(&all[16], ",", "_") + ",,,0," + directory(254) + ",0,,";
    }
    const auto room = static_cast<uint32_t>(next - at);
    const uint32_t url_at = field(0x34);
    const uint32_t name_at = field(0x3C);
    const uint32_t span = field(0x44);
    const uint32_t length = field(0x48);
    string url;
    string name;
    string header;
    string user;
    const auto byte_of = [](uint32_t value) { return static_cast<char>(value); };
    if (next < end) all.replace(4, 4, {byte_of(room / 128), byte_of(room / 32768), 0, 0});
    bool whole = false;
    if (type == "URL ") {
      if (url_at == 0 || url_at >= room) return "";
      url = &all[url_at];
      whole = url.size() <= room - url_at;
      url = cleaned(url.substr(0, room - url_at));
    }
    if (name_at != 0 && name_at < room) name = cleaned(&all[name_at]);
    const bool anywhere = span == 0 || span > room;
    const uint64_t from = anywhere ? 104 : span;
    const uint64_t taken = anywhere ? room - 104 : length;
    if (whole && length <= room - 104 && from + taken <= room) {
      if (taken == 0) return "";
      header = all.substr(from, taken);
      const size_t marker = header.find("~U:");
      if (marker != string::npos) user = cleaned(&header[marker + 3], "", "");
      header = string(header, 0, marker).c_str();
      for (char& c : header) c = c < ' ' || c > '~' ? ' ' : c;
      header = cleaned(header);
      if (marker == 0) {
        user = "-";
        header = "-";
      }
    }
    string modified = filetime_cells(time(0x08));
    string access = filetime_cells(time(0x10));
    const bool in_url = url.size() > 19 && url[0] == ':' && url.substr(17, 2) == "; ";
    if ((in_url || source.ends_with("MSHist")) && modified != ",") modified.replace(24, 3, "local");
    if (type == "LEAK" && access == ",") access = dos_cells(field(0x5C));
    const uint32_t count = field(0x54) == 0xDEADBEEF ? 0 : field(0x54);
    string made;
    for (const string& cell : {modified, access, dos_cells(field(0x18)), dos_cells(field(0x50)),
                               type, url, user, name, std::to_string(field(0x20)),
                               directory(bytes[at + 0x38]), std::to_string(count), header}) {
      made += cell + ",";
    }
    return made;
  }

  // Where the rows part from those of the model, by their offsets. The seed gives the same bytes.
  string explained(const string& found, const std::map<uint64_t, string>& rows) {
    const string where = "seed " + std::to_string(seed) + ", ";
    size_t at = 0;
    for (const auto& [offset, row] : rows) {
      if (found.compare(at, row.size(), row) != 0) {
        const size_t end = std::min(found.find(source + "\n", at), found.size());
        return where + "record at " + std::to_string(offset) + "\n" +
               difference(row, found.substr(at, end + source.size() + 1 - at));
      }
      at += row.size();
    }
    return where + "behind the last row\n" + difference("", found.substr(at, 1000));
  }

  // Makes zeros here and there, from block to block of the grid, so that no time is cut.
  void blank() {
    for (uint32_t left = pick(6); left > 0; --left) {
      const uint64_t at = pick(bytes.size() / 128) * 128;
      std::fill_n(&bytes[at], std::min<uint64_t>(bytes.size() - at, pick(600) * 128), uint8_t{0});
    }
  }

  // Copies a file to one that has a hole where a page is all zeros, and returns its path.
  static string with_holes(const string& path) {
    const string copy = path + "-sparse";
    EXPECT_EQ(std::system(("cp --sparse=always " + path + " " + copy).c_str()), 0);
    return copy;
  }

  // Expects all rows of a search in blocks of `step` and an overlap; without one, of a file that is
  // read whole. No read brings more than `most` bytes, so that no later block is larger either. The
  // first block in which a record is accepted decides what becomes of it.
  void check(uint64_t step, uint64_t overlap, uint64_t most = ~0ULL) {
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
    uint64_t count = std::min(step + overlap, most);
    for (uint64_t begin = 0; begin < bytes.size(); begin += count - overlap) {
      count = std::min<uint64_t>(count, bytes.size() - begin);
      if (count <= overlap) overlap = 0;  // of a file's end, which comes once more
      search(begin, begin + count);
    }
    // From the first right signature on no file needs one.
    any_signature = any_signature || (whole_file && has_signature());
    if (whole_file && !any_signature) rows.clear();
    const bool succeeds = !whole_file || !rows.empty();
    rows[0] = std::exchange(titles, "");  // no record lies there
    string expected;
    for (const auto& [at, made] : rows) expected += made;
    std::ostringstream out;
    opts.results_fd = once_in(5) ? STDERR_FILENO : -1;  // or rows wait
    testing::internal::CaptureStderr();
    uni::stream_sink sink(out);
    EXPECT_EQ(parse_input(sink, opts), succeeds);
    testing::internal::GetCapturedStderr();
    if (out.str() != expected) ADD_FAILURE() << explained(out.str(), rows);
  }
};

TEST_F(RandomIndexes, ReadWhole) {
  for (; seed < 600 && !HasFailure(); ++seed) {
    fill_index(8192 + pick(20000));
    const uint32_t rest = one_of({0u, 4u, 5u, 16u, 17u, 103u, 104u, pick(128)});
    bytes.resize(bytes.size() - pick(5) * 128 + rest);  // cut, or with zeros behind
    source = dir.write(once_in(4) ? "MSHist" : "f", bytes);
    opts.input_path = source;
    check(bytes.size(), 0);
  }
}

TEST_F(RandomIndexes, ReadAsALargeFile) {
  for (; seed < 40 && !HasFailure(); ++seed) {
    fill_index(150000);
    const bool sparse = once_in(2);
    if (sparse) blank();
    const uint64_t size = 0x1000001 + pick(70000);
    const uint64_t tail = (size - 3000 - pick(6000)) / 128 * 128;
    if (!once_in(5)) fill(tail, size, size % 128);  // where the last block has its own grid
    bytes.resize(size);
    const uint32_t most =
        one_of({4096u, 1000 + pick(3000), (40 + pick(24)) * 128, 6000 + pick(26000), 32768u});
    source = dir.write("f", bytes);
    if (sparse) source = with_holes(source);
    opts.input_path = source;
    // No read of a hole is ever short.
    if (!sparse) ::setenv("FAULT_SHORT", std::to_string(most).c_str(), 1);
    check(28672, 4096, sparse ? ~0ULL : most);
    ::unsetenv("FAULT_SHORT");
  }
}

TEST_F(RandomIndexes, ReadFromADisk) {
  for (; seed < 60 && !HasFailure(); ++seed) {
    fill_index(300000);
    bytes.insert(bytes.begin(), pick(160) * 4096, 0);
    blank();
    bytes.resize(983040);  // the disk's size
    vmdk_builder base{vmdk_builder::keys("b", "ffffffff")};
    vmdk_builder leaf{vmdk_builder::keys("l", "b")};
    const uint32_t kinds = one_of({2u, 4u, 4u});  // with two the leaf holds nothing
    for (uint32_t n = 0; n < 240; ++n) {
      const byte_vector grain(&bytes[n * 4096], &bytes[n * 4096] + 4096);
      const bool zeros = grain == byte_vector(4096);
      const uint32_t kind = zeros && once_in(2) ? 0 : pick(kinds);
      if (kind < 2 && !zeros) base.grains[n] = grain;
      if (kind > 1) leaf.grains[n] = grain;
      if (kind > 2) base.grains[n] = leaf.grains.begin()->second;  // what must not be seen
    }
    bytes.resize(987136);  // beyond its end the last read finds zeros
    const string newest = dir.write("leaf", leaf.bytes());
    const string oldest = dir.write("base", base.bytes());
    opts.vmdk_paths = {zk::utf8_to_wide(newest), zk::utf8_to_wide(oldest)};
    source = newest + "; " + oldest;
    check(61440, 4096);
  }
}

}  // namespace
