// Random indexes down each of the three roads, against a model of which rows must come of them.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>

#include "cache/input_roads.h"
#include "cache/parse_input.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "tests/support/vmdk_builder.h"
#include "text/zk_wide.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;
using std::string;
using blocks =
    std::vector<std::pair<uint64_t, uint64_t>>;  // what the search is given, each to its end

struct placed {
  uint64_t at;
  string type, times, size, count;
};  // a signature, and cells as they must be printed
struct moment {
  string cells;
  uint64_t filetime;
  uint32_t dos;
};

string trimmed(const string& text) {
  const size_t first = std::min(text.find_first_not_of(" \t\r\n"), text.size());
  return text.substr(first, text.find_last_not_of(" \t\r\n") + 1 - first);
}
string cleaned(string text, char comma) {
  std::replace(text.begin(), text.end(), ',', comma);
  text = trimmed(text);
  if (comma == ';')
    for (char& c : text) c = c == '\r' ? ' ' : c == '\n' ? ';' : c;
  return text;
}

struct index_model {
  std::mt19937 random;
  byte_vector bytes = {};
  std::vector<placed> records = {};  // in ascending order
  strings directories = {};
  bool history = false;
  uint32_t skew = 0;  // how far off the grid, anywhere for 0

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
  moment next_moment() {
    const uint32_t kind = pick(4);
    if (kind < 2) return {",", kind * 0xDEADBEEFDEADBEEF, kind * 0x1234BEEF};
    int f[6], i = 0;
    for (const auto& [first, count] :
         {std::pair{2001, 30u}, {1, 12u}, {1, 28u}, {0, 24u}, {0, 60u}, {0, 30u}})
      f[i++] = first + static_cast<int>(pick(count));
    char text[99];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d,%02d:%02d:%02d.000 UTC", f[0], f[1], f[2],
                  f[3], f[4], f[5] *= 2);
    return {text, sample::filetime_of(f[0], f[1], f[2], f[3], f[4], f[5]),
            sample::dos_of(f[0], f[1], f[2], f[3], f[4], f[5])};
  }

  // A random record, in some of whose fields stands what its maker didn't mean.
  byte_vector next_record(placed& made) {
    const string url = next_text(once_in(20) ? 1200 : 150);
    made = {0, one_of({"URL ", "URL ", "URL ", "LEAK", "REDR"}), ",,,,,,,", "0", "0"};
    record built =
        made.type == "REDR" ? record::redr(url) : record::url(url).put_text(0, made.type);
    if (made.type != "REDR") {
      const moment modified = next_moment(), access = next_moment(), expires = next_moment(),
                   synced = next_moment(), leaked = next_moment();
      const bool stands_in = access.cells == "," && made.type == "LEAK";
      made.times = modified.cells + "," + (stands_in ? leaked : access).cells + "," +
                   expires.cells + "," + synced.cells;
      const uint32_t size = pick(1ULL << 32), count = once_in(4) ? 0xDEADBEEF : pick(1000);
      made.size = std::to_string(size),
      made.count = std::to_string(count == 0xDEADBEEF ? 0 : count);
      built.last_mod(modified.filetime)
          .access(access.filetime)
          .expires(expires.dos)
          .last_sync(synced.dos)
          .leak_access(leaked.dos)
          .file_size(size)
          .count(count)
          .directory(static_cast<uint8_t>(pick(6)));
      if (!once_in(4)) built.filename(next_text(40));
      if (!once_in(4))
        built.header(one_of({"", "HTTP/1.1 200 OK\r\nETag: a,b\r\n\r\n", " \x7F\x80 x \r\n"}),
                     one_of({"", "alice", " b,c\n "}));
      const auto room = static_cast<uint32_t>(built.bytes().size());
      const auto spoil = [&](uint32_t at, std::initializer_list<uint32_t> values) {
        if (once_in(12)) built.put32(at, one_of(values));
      };
      spoil(0x34, {0, 120, room - 1, room, room + 1, 0x7FFFFFFF});
      spoil(0x3C, {0, room - 1, room, room + 1, 0x7FFFFFFF});
      spoil(0x44, {0, 104, room - 1, room, room + 1, 0x7FFFFFFF});
      spoil(0x48, {0, 1, room - 104, room - 103, 0x7FFFFFFF});
    }
    if (once_in(6)) built.blocks(1 + pick(9));
    if (once_in(10)) built.put32(4, one_of({0u, 9u, 10u, 13u, 300u, 0x0A0A0A0Au, 0xFFFFFFFFu}));
    return built.bytes();
  }

  // Lays records down from `at` to `end`, the last perhaps beyond it: on the grid or off it, some
  // inside the one before, with noise between.
  void fill(uint64_t at, uint64_t end) {
    while (at < end) {
      const uint64_t inner = records.empty() ? at : records.back().at + 128;
      const byte_vector added = next_record(records.emplace_back());
      uint64_t& place = records.back().at = at + (!once_in(15) ? 0
                                                  : skew != 0  ? skew
                                                               : 4 + pick(120));
      if (inner < at && at - inner < 2000 && once_in(6))
        place = inner + pick((at - inner) / 128 + 1) * 128;
      bytes.resize(std::max(bytes.size(), place + added.size()));
      std::copy(added.begin(), added.end(), bytes.begin() + static_cast<ptrdiff_t>(place));
      bytes.resize(at = (bytes.size() + 127) / 128 * 128);
      if (once_in(8)) bytes.resize(at += (1 + pick(8)) * 128, one_of({uint8_t{0}, uint8_t{'x'}}));
    }
  }
  // An index, or records from the very first block on.
  void fill_index(uint64_t end) {
    if (once_in(5)) return fill(0, end);
    for (uint32_t i = pick(6); i > 0; --i)
      directories.push_back(string(1 + pick(8), static_cast<char>('A' + i)));
    bytes = sample::header_bytes(directories, end);
    fill(8192, end);
  }

  // The row of a record of which `limit` bytes can be read and `room` are its own; none if it must
  // be refused.
  string row(const placed& p, uint64_t room, uint64_t limit, bool named) const {
    const string all(bytes.begin() + static_cast<ptrdiff_t>(p.at),
                     bytes.begin() + static_cast<ptrdiff_t>(p.at + limit));
    const auto text = [&](uint64_t from) { return all.substr(from, all.find('\0', from) - from); };
    const auto field = [&](uint32_t from) { return uint64_t{zk::load_le32(&bytes[p.at + from])}; };
    string url, name, header, user, directory, times = p.times;
    if (limit < (p.type == "REDR" ? 17 : 104) || field(4) >= 10) return "";
    if (p.type == "REDR") return times + ",REDR," + cleaned(text(16), '_') + ",,,0,,0,,";
    bool whole = false;
    if (p.type == "URL ") {
      if (field(0x34) == 0 || field(0x34) >= room) return "";
      url = text(field(0x34));
      whole = url.size() <= room - field(0x34);
      url = cleaned(url.substr(0, room - field(0x34)), ';');
    }
    if (field(0x3C) != 0 && field(0x3C) < room) name = cleaned(text(field(0x3C)), ';');
    const bool anywhere = field(0x44) == 0 || field(0x44) > room;
    const uint64_t at = anywhere ? 104 : field(0x44), length = anywhere ? room - 104 : field(0x48);
    if (whole && field(0x48) <= room - 104 && at + length <= room) {
      if (length == 0) return "";
      header = all.substr(at, length);
      const size_t marker = header.find("~U:");
      if (marker != string::npos) user = trimmed(header.substr(marker + 3).c_str());
      header = string(header, 0, marker).c_str();
      for (char& c : header) c = c < ' ' || c > '~' ? ' ' : c;
      header = cleaned(header, ';');
      if (marker == 0) header = user = "-";
    }
    const size_t index = bytes[p.at + 0x38];
    if (named && index < directories.size()) (directory = directories[index]).resize(8);
    const bool local = history || (url.size() > 19 && url[0] == ':' && url.substr(17, 2) == "; ");
    if (local && times[0] != ',') times.replace(24, 3, "local");
    return times + "," + p.type + "," + url + "," + user + "," + name + "," + p.size + "," +
           directory + "," + p.count + "," + header + ",";
  }

  // Expects all rows. The first block in which a record is accepted decides what becomes of it.
  void check(cmd_opts& opts, const blocks& given, const string& source, bool named = false) const {
    std::map<uint64_t, string> found;
    for (const auto& [begin, end] : given) {
      for (auto p = records.begin(); p != records.end() && p->at + 4 < end; ++p) {
        if (p->at <= begin || (p->at - begin) % 128 != 0) continue;
        const auto next = std::find_if(p + 1, records.end(),
                                       [&](const placed& q) { return (q.at - p->at) % 128 == 0; });
        const uint64_t limit = end - p->at, room = next != records.end() && next->at + 4 < end
                                                       ? next->at - p->at
                                                       : limit;
        if (const string made = row(*p, room, limit, named); !made.empty())
          found.try_emplace(p->at, made + source + "\n");
      }
    }
    string expected;
    for (const auto& [at, made] : found) expected += made;
    opts.any_signature = true;
    opts.header_pending = opts.show_progress = false;
    std::ostringstream out;
    testing::internal::CaptureStderr();
    EXPECT_EQ(parse_input(out, opts), !named || !found.empty());
    testing::internal::GetCapturedStderr();
    ASSERT_EQ(out.str(), expected);
  }
};

void for_seeds(uint32_t first, uint32_t count,
               const std::function<void(index_model&, cmd_opts&, const temp_dir&)>& run) {
  const temp_dir dir;
  for (uint32_t seed = first; seed < first + count && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    index_model model{std::mt19937(seed)};
    cmd_opts opts;
    run(model, opts, dir);
  }
}

TEST(RandomIndexes, ReadWhole) {
  for_seeds(0, 600, [](index_model& model, cmd_opts& opts, const temp_dir& dir) {
    model.fill_index(8192 + model.pick(20000));
    model.bytes.resize(model.bytes.size() + 100 - model.pick(600));  // cut, or with zeros behind
    model.history = model.once_in(4);
    opts.input_path = dir.write(model.history ? "MSHist" : "f", model.bytes);
    model.check(opts, {{0, model.bytes.size()}}, opts.input_path, true);
  });
}

TEST(RandomIndexes, ReadAsALargeFile) {
  for_seeds(1000, 40, [](index_model& model, cmd_opts& opts, const temp_dir& dir) {
    model.fill_index(150000);
    opts.input_path = dir.write("f", model.bytes);
    const uint64_t size = largest_whole_file + 1 + model.pick(70000),
                   tail = (size - 3000 - model.pick(6000)) / 128 * 128;
    model.skew = size % 128;  // where the last block has its own grid
    model.fill(tail, size);
    model.bytes.resize(size);
    std::filesystem::resize_file(opts.input_path, tail);
    std::ofstream(opts.input_path, std::ios::binary | std::ios::app)
        .write(reinterpret_cast<const char*>(&model.bytes[tail]),
               static_cast<std::streamsize>(size - tail));
    blocks given = {{0, 32768}};
    while (given.back().second < size)
      given.emplace_back(given.back().first + 28672, std::min(size, given.back().second + 28672));
    if (size - given.back().first > 4096)
      given.emplace_back(size - 4096, size);  // its end once more
    model.check(opts, given, opts.input_path);
  });
}

TEST(RandomIndexes, ReadFromADisk) {
  for_seeds(2000, 60, [](index_model& model, cmd_opts& opts, const temp_dir& dir) {
    model.fill_index(300000);
    model.bytes.resize(458752);  // the disk's size
    vmdk_builder base{vmdk_builder::keys("b", "ffffffff"), {}, 1},
        leaf{vmdk_builder::keys("l", "b"), {}, 1};
    for (uint32_t n = 0; n < 112; ++n) {
      const byte_vector grain(model.bytes.begin() + n * 4096, model.bytes.begin() + (n + 1) * 4096);
      const bool hole = std::count(grain.begin(), grain.end(), 0) == 4096, newer = model.once_in(2);
      if (newer) leaf.grains[n] = grain;
      if (newer && model.once_in(2))
        base.grains[n] = leaf.grains.begin()->second;  // what must not be seen
      if (!newer && !hole) base.grains[n] = grain;
    }
    model.bytes.resize(495616);  // beyond its end the last read finds zeros
    const string newest = dir.write("leaf", leaf.bytes()), oldest = dir.write("base", base.bytes());
    opts.vmdk_paths = {zk::utf8_to_wide(newest), zk::utf8_to_wide(oldest)};
    blocks given;
    for (uint64_t begin = 0; begin < 458752; begin += 61440)
      given.emplace_back(begin, begin + 65536);
    model.check(opts, given, newest + "; " + oldest);
  });
}

}  // namespace
