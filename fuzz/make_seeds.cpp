// Writes the inputs that each fuzz target starts from, below a folder.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "cache/index_dat.h"
#include "media/zk_disk_structs.h"
#include "text/le_bytes.h"
#include "tools/case_file.h"
#include "tools/index_builder.h"
#include "tools/sample_records.h"
#include "tools/vmdk_builder.h"

namespace {

using sample::byte_vector;
using sample::record;

std::filesystem::path root;

void seed(const std::string& target, const std::string& text) {
  static std::map<std::string, int> written;
  std::filesystem::create_directories(root / target);
  std::ofstream(root / target / std::to_string(++written[target]), std::ios::binary) << text;
}

void seed(const std::string& target, const byte_vector& bytes, const std::string& ahead = "") {
  seed(target, ahead + std::string(bytes.begin(), bytes.end()));
}

std::string le(uint64_t value, int size) {
  std::string text;
  for (; size > 0; --size, value >>= 8) text += static_cast<char>(value);
  return text;
}

std::string apart_by_nul(const strings& texts) {
  std::string made;
  for (const std::string& text : texts) made += text + '\0';
  return made.substr(0, made.size() - 1);
}

// An index in little room: its header and its HASH block are cut to what they hold.
byte_vector small_index(const byte_vector& records) {
  constexpr uint32_t hash_at = 0x100, records_at = 0x180;
  byte_vector made = sample::header_bytes(sample::directory_names(), 0);
  made.resize(hash_at);
  zk::store_le32(&made[index_layout::first_hash], hash_at);
  const byte_vector hash = sample::hash_block_bytes({records_at, records_at + 0x100}, 0);
  made.insert(made.end(), hash.begin(), hash.begin() + records_at - hash_at);
  made.insert(made.end(), records.begin(), records.end());
  return made;
}

void seed_indexes() {
  for (const record& first :
       {record::url("u").put32(0x34, 0xF00).put32(4, 9).put_text(0xF00, "far").header("h"),
        record::url("http://a/,b").filename("a[1].htm").header("HTTP/1.1 200", "me").blocks(2),
        record::leak().leak_access(sample::dos_of(2008, 3, 1)).blocks(2),
        sample::typical_record(0)}) {
    byte_vector records = first.bytes();
    const byte_vector second = record::redr("http://r/,").bytes();
    records.insert(records.end(), second.begin(), second.end());
    const byte_vector index = small_index(records);
    for (const char* target : {"scan", "hash"}) seed(target, index);
    for (const char* place : {"\x1D", "\x28", "\x3D"}) seed("blocks", index, place);
  }
}

// An extent with grains of one sector.
std::string extent(const std::string& cid, const std::string& parent,
                   const std::vector<uint32_t>& held) {
  vmdk_builder builder{vmdk_builder::keys(cid, parent, "parentFileNameHint=\"b\"\n")};
  builder.tables = 1;
  for (const uint32_t grain : held) builder.grains[grain] = byte_vector(512, cid[0] & 0xFF);
  byte_vector bytes = builder.bytes();
  zk::store_le32(&bytes[vmdk_layout::grain_size], 1);
  return {bytes.begin(), bytes.end()};
}

void seed_disks() {
  const std::string base = extent("b", "ffffffff", {0, 4}), child = extent("c", "b", {1});
  for (const uint64_t offset : {0u, 300u, 1024u}) {
    const std::string place = le(offset << 2, 8) + le(0, 1) + le(1500, 2);
    seed("extent", base + place);
    seed("chain", le(base.size(), 4).append(base).append(child).append(place));
    seed("chain", le(child.size(), 4).append(child).append(base).append(place));
  }
  // A list of two logical volumes, and a boot sector.
  std::string disk(2048, '\0');
  const auto entry = [](uint64_t type, uint64_t first_sector) {
    return le(type << 32, 8).append(le(uint64_t{9} << 32 | first_sector, 8));
  };
  const auto boot = [&](size_t at, uint64_t type, uint64_t first, uint64_t next) {
    disk.replace(at + 446, 16, entry(type, first)).replace(at + 462, 16, entry(5, next));
    disk.replace(at + 510, 2, "\x55\xAA");
  };
  boot(0, 7, 3, 1);
  boot(512, 7, 2, 1);
  boot(1024, 6, 1, 0);
  seed("partitions", disk.replace(1539, 8, "NTFS    "));
  seed("partitions", std::string(512, '\0') + disk);
}

void seed_texts() {
  std::string words;
  for (const test_case& c : cases_of("front/option")) {
    seed("options", apart_by_nul(c.inputs));
    for (const std::string& each : c.inputs) {
      if (each.starts_with('-') && each.find_first_of("\"\\") == std::string::npos) {
        words += "\"" + each + "\"\n";
      }
    }
  }
  std::ofstream(root / "options.dict") << words;
  for (const test_case& c : cases_of("front/filter")) {
    seed("filter", apart_by_nul({c[0], c[1], "DE AD|4"}));
  }
  const std::string moment = le(sample::filetime_of(2009, 7, 21, 18, 4, 5) + 1234567, 8);
  for (const test_case& c : cases_of("time/mask")) {
    seed("times", moment + apart_by_nul({c["date"], c["time"], "2020-1-5", "1:2:3", "YMD-"}));
  }
  for (const test_case& c : cases_of("time/parsed")) {
    const std::string order = c["order"] + c["separator"];
    seed("times", moment + apart_by_nul({"mm/dd/yy", "hh:mm:ss", c[0], c["time"], order}));
  }
  seed("utf8", "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
  seed("utf8", le(0xD800, 4) + le(0x10FFFF, 4) + le(0x110000, 4));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_seeds FOLDER\n";
    return 2;
  }
  root = argv[1];
  seed_indexes();
  seed_disks();
  seed_texts();
  return 0;
}
