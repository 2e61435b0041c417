// Raw sources: extents and chains of a VMware disk, plain images, the map of a boot record.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include "cache/parse_input.h"
#include "media/disk_chain_check.h"
#include "media/partition_map.h"
#include "media/raw_disk_io.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "tests/support/vmdk_builder.h"
#include "text/zk_wide.h"
#include "tools/index_builder.h"

namespace {

using bytes = std::vector<uint8_t>;
using std::string;
constexpr uint32_t grain = vmdk_builder::grain_bytes;

bytes filled(char c, size_t size = grain) {
  return bytes(size, static_cast<uint8_t>(c));
}

// Writes base.vmdk and, on top of it, mid.vmdk and leaf.vmdk.
struct disk_test : testing::Test {
  const temp_dir dir;
  const string base =
      write("base", "b", "ffffffff", {{0, filled('B')}, {1, filled('B')}, {2, filled('B')}});
  const string mid = write("mid", "m", "b", {{1, filled('M')}, {3, filled('M')}},
                           "parentFileNameHint=\"base.vmdk\"\n");
  const string leaf =
      write("leaf", "l", "m", {{2, filled('L')}}, "parentFileNameHint=\"mid.vmdk\"\n");

  string write(const string& name, const string& cid, const string& parent,
               decltype(vmdk_builder::grains) grains, const string& more = "") const {
    return dir.write(
        name + ".vmdk",
        vmdk_builder{vmdk_builder::keys(cid, parent, more), std::move(grains)}.bytes());
  }
  static std::vector<std::wstring> wide(const std::vector<string>& paths) {
    std::vector<std::wstring> list;
    for (const string& path : paths) list.push_back(zk::utf8_to_wide(path));
    return list;
  }
  // The first bytes of the disk's first grains, dots for zeros.
  static string seen(const RAW_DISK_IO& disk, int64_t offset, uint32_t count) {
    bytes out(count, 'x');
    if (!disk.read(out.data(), count, offset) || count != out.size()) return "failed";
    string text;
    for (uint32_t at = 0; at < count; at += grain)
      text += out[at] == 0 ? '.' : static_cast<char>(out[at]);
    return text;
  }
  // The text of a check and then the list that it suggests, without the folder.
  string check(const std::vector<string>& paths, bool& result) const {
    std::ostringstream text;
    std::vector<std::wstring> suggested;
    result = disk_chain_check(wide(paths), text, suggested);
    for (const std::wstring& path : suggested) text << "[" << zk::wide_to_utf8(path) << "]";
    string out = text.str();
    for (size_t at; (at = out.find(dir.path() + "/")) != string::npos;)
      out.erase(at, dir.path().size() + 1);
    return out;
  }
};

TEST_F(disk_test, EachGrainComesFromTheNewestThatHoldsIt) {
  for (const auto& order :
       std::vector<std::vector<string>>{{base, mid, leaf}, {leaf, mid, base}, {mid, leaf, base}}) {
    const RAW_DISK_IO disk(wide(order), false);
    ASSERT_TRUE(disk.is_open());
    EXPECT_EQ(disk.size(), 2 * 128 * 4096 - 65536);
    EXPECT_EQ(seen(disk, 0, 6 * grain), "BMLM..");
    EXPECT_EQ(seen(disk, grain / 2, 3 * grain), "BML");            // each part from its own extent
    EXPECT_EQ(seen(disk, disk.size() - grain, 3 * grain), "...");  // full past the end
    EXPECT_TRUE(disk.is_hole(4 * grain, 100 * grain) && !disk.is_hole(3 * grain + 4095, 2));
    uint32_t count = 10, none = 0;
    uint8_t out[10];
    EXPECT_FALSE(disk.read(out, count, disk.size()) || disk.read(out, none, 0) ||
                 disk.read(nullptr, count, 0));
  }
  EXPECT_FALSE(RAW_DISK_IO(wide({leaf, base}), false).is_open());  // a parent is missing
  EXPECT_FALSE(RAW_DISK_IO(wide({mid, leaf}), false).is_open());
  EXPECT_FALSE(RAW_DISK_IO(wide({}), false).is_open());
  // A grain past its file's end is zeros, not the parent's; one that the end cuts is filled up.
  bytes far = read_bytes(write("far", "f", "b", {{0, filled('F')}, {1, filled('F', 100)}}));
  zk::store_le32(&far[4 * 512], 0xFFFFF);
  dir.write("far.vmdk", far);
  const RAW_DISK_IO disk(wide({dir.path("far.vmdk"), base}), false);
  EXPECT_EQ(seen(disk, 0, 3 * grain), ".FB");
  bytes out(grain, 'x');
  uint32_t count = grain;
  EXPECT_TRUE(disk.read(out.data(), count, grain) && out[99] == 'F' && out[100] == 0 &&
              out.back() == 0);
}

TEST_F(disk_test, TheListCheck) {
  write("self", "s", "s", {}), write("lost", "x", "y", {}, "parentFileNameHint=\"/none/z.vmdk\"\n");
  write("moved", "k", "old", {}, "parentFileNameHint=\"base.vmdk\"\n"),
      write("orphan", "o", "y", {}, "parentFileNameHint=\"z\"\n");
  write("win", "w", "b", {},
        "encoding=\"windows-1252\"\nparentFileNameHint=\"C:\\disks\\base.vmdk\"\n");
  const string nothing = dir.write("no.vmdk", "text"),
               cr = dir.write("cr.vmdk", vmdk_builder{"CID=c\r\nparentCID=ffffffff\r\n"}.bytes());
  const auto in = [&](const string& name) { return dir.path(name + ".vmdk"); };
  const string missing = "Child VMDK points to a parent VMDK that doesn't exist, aborting\n";
  const string mid_needs = "=> vmdk file: mid.vmdk\n depends on parent vmdk \"base.vmdk\"\n";
  struct check_case {
    std::vector<string> paths;
    bool result;
    string text;
  };
  for (const auto& c : std::vector<check_case>{
           {{leaf, base, mid}, true, "[leaf.vmdk][base.vmdk][mid.vmdk]"},
           {{base, base}, true, "[base.vmdk][base.vmdk]"},
           {{mid}, false, mid_needs + "[mid.vmdk][base.vmdk]"},
           {{in("self")}, false, "Child VMDK CID errors, aborting\n[self.vmdk]"},
           {{leaf},
            false,
            "=> vmdk file: leaf.vmdk\n depends on parent vmdk \"mid.vmdk\"\n" + mid_needs +
                "[leaf.vmdk][mid.vmdk][base.vmdk]"},
           {{nothing}, false, "no.vmdk can't be opened\n[no.vmdk]"},
           {{}, false, ""},
           {{in("orphan")}, false, missing + "[orphan.vmdk]"},
           {{base, in("moved")}, true, "[base.vmdk][moved.vmdk]"},
           {{cr},
            false,
            "=> vmdk file: cr.vmdk\n depends on parent vmdk \n can't be "
            "opened\n[cr.vmdk][]"},  // its CR belongs to the value
           {{in("win")},
            false,
            "=> vmdk file: win.vmdk\n depends on parent vmdk "
            "\"base.vmdk\"\n[win.vmdk][base.vmdk]"},
           {{in("lost")},
            false,
            "=> vmdk file: lost.vmdk\n depends on parent vmdk "
            "\"z.vmdk\"\nz.vmdk can't be opened\n[lost.vmdk][z.vmdk]"}}) {
    bool result = !c.result;
    EXPECT_EQ(check(c.paths, result), c.text);
    EXPECT_EQ(result, c.result) << c.text;
  }
  // The check forgives a changed key, and the chain doesn't.
  EXPECT_FALSE(RAW_DISK_IO(wide({base, in("moved")}), false).is_open());
}

TEST_F(disk_test, DescriptorKeys) {
  VMDK_EXTENT extent;
  ASSERT_TRUE(extent.open(
      zk::utf8_to_wide(dir.write(
          "k", vmdk_builder{"Cid=one\n CID=blank\nCID=Two "
                            "\r\n\nParentCID=\"P\"\nENCODING=E\nparentFileNameHint=h/H\nxcid=3\n",
                            {{0, filled('g')}}}
                   .bytes())),
      false));
  EXPECT_EQ(extent.m_cid + "|" + extent.m_parent_cid + "|" + extent.m_encoding + "|" +
                extent.m_parent_hint,
            "Two \r|\"P\"|E|h/H");
  EXPECT_EQ(extent.m_descriptor_lines.size(), 7u);
}

TEST_F(disk_test, HostileExtents) {
  const bytes good = read_bytes(base);
  const auto opens = [&](size_t at, uint64_t value, size_t size) {
    bytes made = good;
    made.resize(size);
    if (at != 0)
      zk::store_le32(&made[at], static_cast<uint32_t>(value)),
          zk::store_le32(&made[at + 4], static_cast<uint32_t>(value >> 32));
    VMDK_EXTENT extent;
    const bool valid = extent.open(zk::utf8_to_wide(dir.write("h", made)), false);
    uint64_t place = 0;
    uint32_t count = 8192;
    bytes out(count);
    for (const uint64_t offset : {uint64_t{0}, uint64_t{5000}, ~uint64_t{0}, uint64_t{1} << 40}) {
      extent.locate_grain(offset, place);
      extent.read_extent(extent.m_fd, out.data(), offset, count = 8192);
    }
    return valid;
  };
  using namespace vmdk_layout;
  constexpr uint64_t ones = ~uint64_t{0}, wrap = 1ULL << 55;
  struct header_case {
    uint32_t at;
    uint64_t value;
    bool valid;
  };
  for (const auto& c : std::vector<header_case>{{grain_size, 0, false},
                                                {grain_size, wrap, false},
                                                {grain_size, ones, true},
                                                {grain_size, 1 << 23, true},
                                                {capacity, ones, true},
                                                {descriptor_size, 0, true},
                                                {descriptor_size, ones, true},
                                                {descriptor_offset, 1 << 20, true},
                                                {descriptor_offset, ones >> 1, false},
                                                {overhead, 0, false},
                                                {overhead, 5, true},
                                                {overhead, 3, false},
                                                {overhead, 0x7FFFFF, true},
                                                {overhead, ones, false},
                                                {directory_offset, ones, false},
                                                {directory_offset, 5, false},
                                                {directory_offset, 6, false},
                                                {3 * 512, 2ULL << 32 | 2, false},
                                                {3 * 512, 0x7FFFFFULL, false},
                                                {3 * 512, 3, false},
                                                {4 * 512, 0xFFFFFFFF, true}}) {
    EXPECT_EQ(opens(c.at, c.value, good.size()), c.valid) << c.at << ' ' << c.value;
  }
  bytes tables = good;  // entries per table: none, more than may be held, more than the file has
  for (const auto& [entries, valid] :
       {std::pair{0u, false}, {0xFFFFFFFFu, false}, {0x1000u, true}, {0x00080001u, false}}) {
    zk::store_le32(&tables[entries_per_table], entries);
    VMDK_EXTENT extent;
    EXPECT_EQ(extent.open(zk::utf8_to_wide(dir.write("t", tables)), false), valid) << entries;
  }
  for (size_t size = 0; size <= good.size(); size += 100) opens(0, 0, size);
  EXPECT_FALSE(opens(0, 0, 0) || opens(0, 0, 1536));
}

TEST_F(disk_test, PlainImages) {
  const string path = dir.write("image", string(65637, 'x'));
  const RAW_DISK_IO disk(path, false);
  bytes out(65536, 'y');
  uint32_t count = 65536;
  EXPECT_TRUE(disk.is_open() && disk.read(out.data(), count, 65537) && count == 100 &&
              out[99] == 'x' && out[100] == 'y');
  EXPECT_FALSE(disk.read(out.data(), count, 65637) || disk.is_hole(0, 1));
  std::filesystem::resize_file(path, 10);
  EXPECT_TRUE(disk.read(out.data(), count = 50, 100) && count == 50);  // a short read isn't told
  EXPECT_FALSE(RAW_DISK_IO("", false).is_open() || RAW_DISK_IO(dir.path("none"), false).is_open());

  cmd_opts opts;  // the road behind -partition
  opts.partition_path =
      dir.write("disk", sample::index_file().add(sample::record::redr("r")).bytes());
  std::ostringstream rows;
  testing::internal::CaptureStderr();
  EXPECT_TRUE(parse_input(rows, opts));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            narrow_wipe + "percent done: 0\r" + wide_wipe + "success");
  EXPECT_EQ(rows.str(), header_line + ",,,,,,,,REDR,r,,,0,,0,," + opts.partition_path + ":\\\n");
  opts.partition_path = dir.path("none");
  EXPECT_FALSE(parse_input(rows, opts));
}

TEST(PartitionMap, VolumesOfABootRecord) {
  const auto sector = [](std::vector<std::array<uint32_t, 3>> entries, const char* boot = "") {
    bytes made(512);
    std::copy_n(boot, std::strlen(boot), made.begin() + 3);
    for (size_t i = 0; i < entries.size(); ++i) {
      made[446 + i * 16 + 4] = static_cast<uint8_t>(entries[i][0]);
      zk::store_le32(&made[446 + i * 16 + 8], entries[i][1]),
          zk::store_le32(&made[446 + i * 16 + 12], entries[i][2]);
    }
    made[510] = 0x55, made[511] = 0xAA;
    return made;
  };
  const auto at = [](std::initializer_list<std::pair<size_t, bytes>> parts, size_t size) {
    bytes made(size);
    for (const auto& [place, part] : parts)
      std::copy(part.begin(), part.end(), made.begin() + static_cast<ptrdiff_t>(place));
    return made;
  };
  struct map_case {
    bytes disk;
    bool carving;
    string volumes;
  };  // start+count:type/sector size, empty for false
  for (const auto& c : std::vector<map_case>{
           {bytes(511), true, ""},
           {bytes(512), false, ""},
           {bytes(512), true, ""},
           {sector({{7, 2048, 9}}), false, "2048+9:7/512 "},
           {sector({{7, 2048, 9}, {0, 1, 1}, {7, 1, 1}}), false, "2048+9:7/512 "},
           {sector({{0xEE, 1, 9}}), false, ""},
           {sector({{7, 2048, 0}}), false, ""},
           {sector({}, "NTFS    "), false, ""},
           {sector({}, "NTFS    "), true, "0+0:7/0 "},
           {sector({{5, 1, 9}}), false, "1+9:5/512 "},  // its record lies past the bytes
           {at({{0, sector({{5, 2, 9}})},
                {1024, sector({{7, 1, 4}, {5, 1, 9}})},
                {1536, sector({{7, 1, 3}, {5, 1, 9}})}},
               2048),
            false,
            "2+9:5/512 3+4:7/512 3+9:5/512 4+3:7/512 3+9:5/512 4+3:7/512 3+9:5/512 4+3:7/512 "
            "3+9:5/512 4+3:7/512 3+9:5/512 "},  // in circles
           {at({{512, sector({{7, 1, 4}})}}, 1024), true, "2+4:7/512 "},
           {at({{0, sector({{7, 1, 9}})}, {512, sector({}, "EXFAT   ")}}, 1024), false,
            "1+9:7/1 "}}) {
    VOLUME_LIST volumes(3);
    bytes disk = c.disk;
    disk.shrink_to_fit();
    EXPECT_EQ(partition_map(disk.data(), disk.size(), volumes, c.carving), !c.volumes.empty())
        << c.volumes;
    std::ostringstream text;
    for (const auto& v : volumes)
      text << v.m_start_sector << '+' << v.m_num_sectors << ':' << v.m_type << '/'
           << v.m_sector_size << ' ';
    EXPECT_EQ(text.str(), c.volumes);
  }
}

}  // namespace
