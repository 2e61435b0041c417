// Raw sources, as cases.txt tells: extents and chains of a VMware disk, plain images, the map of a
// boot record.
#include <gtest/gtest.h>

#include <sstream>

#include "media/disk_chain_check.h"
#include "media/partition_map.h"
#include "media/raw_disk_io.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "text/zk_wide.h"
#include "tools/vmdk_builder.h"

namespace {

using bytes = std::vector<uint8_t>;
using std::string;

// A folder with the table's extents.
struct disk_test : testing::Test {
  const temp_dir dir;

  void SetUp() override {
    check_cases("media/extent", [&](const strings& c) { return written(c); });
  }
  // Writes an extent and reads of it, here and there; the keys found in it.
  string written(const strings& c) const {
    vmdk_builder builder{c[1]};
    for (uint32_t n = 0; n < c[2].size(); ++n)
      if (c[2][n] != '.') builder.grains[n].assign(4096, static_cast<uint8_t>(c[2][n]));
    bytes made = builder.bytes();
    for (size_t i = 3; i < c.size(); ++i) {
      const size_t equals = c[i].find('=');
      if (equals == string::npos) {
        made.resize(number(c[i]));
      } else {
        zk::store_le32(&made[number(c[i])], number32(c[i].substr(equals + 1)));
      }
    }
    VMDK_EXTENT extent;
    const bool valid = extent.open(zk::utf8_to_wide(dir.write(c[0], made)), false);
    for (const uint64_t offset : {uint64_t{0}, uint64_t{5000}, ~uint64_t{0}, uint64_t{1} << 40}) {
      uint32_t count = 8192;
      bytes out(count);
      static_cast<void>(extent.read_extent(extent.m_fd, out.data(), offset, count));
    }
    return valid ? joined(extent.m_cid, extent.m_parent_cid, extent.m_encoding,
                          extent.m_parent_hint, extent.m_descriptor_lines.size())
                 : "refused";
  }
  // The paths of the files that a case names behind its first `skipped` columns.
  std::vector<std::wstring> paths(const strings& c, size_t skipped) const {
    std::vector<std::wstring> found;
    for (size_t i = skipped; i < c.size(); ++i) found.push_back(zk::utf8_to_wide(dir.path(c[i])));
    return found;
  }
};

// How a disk is seen, and what a read of it leaves in a buffer of question marks.
string seen(const RAW_DISK_IO& disk, const string& place, const string& size) {
  const auto offset = static_cast<int64_t>(number(place));
  uint32_t count = number32(size);
  bytes out(std::max(count, 1U), '?');
  const bool hole = uni::stretch_finder(disk).all_zeros(offset, count),
             came = disk.read(out.data(), count, offset);
  string text = joined(disk.is_open(), disk.size(), hole, came, count);
  for (auto at = out.begin(), next = at; at != out.end(); at = next) {
    next = std::find_if(at, out.end(), [&](uint8_t byte) { return byte != *at; });
    text += " " + std::to_string(next - at) + (*at == 0 ? '.' : static_cast<char>(*at));
  }
  return text;
}

TEST_F(disk_test, HostileExtents) {
  const strings base = {"h", "CID=b\nparentCID=ffffffff", "BBB"};
  check_cases("media/header", [&](strings c) {
    c.insert(c.begin(), base.begin(), base.end());
    return written(c);
  });
  for (int size = 0; size <= 15360; size += 100)
    written({base[0], base[1], base[2], std::to_string(size)});
}

TEST_F(disk_test, TheListCheck) {
  check_cases("media/check", [&](const strings& c) {
    std::ostringstream text;
    std::vector<std::wstring> suggested;
    const bool result = disk_chain_check(paths(c, 0), text, suggested);
    for (const std::wstring& path : suggested) text << '[' << zk::wide_to_utf8(path) << ']';
    return replaced(joined(result, text.str()), dir.path(), "~");
  });
}

TEST_F(disk_test, Reads) {
  check_cases("media/disk",
              [&](const strings& c) { return seen(RAW_DISK_IO(paths(c, 2), false), c[0], c[1]); });
  check_cases("media/image", [&](const strings& c) {
    const string path = dir.write("image", string(number(c[0]), 'x'));
    const RAW_DISK_IO disk(path, false);
    std::filesystem::resize_file(path, number(c[1]));
    return seen(disk, c[2], c[3]);
  });
  uint32_t count = 10;
  EXPECT_FALSE(RAW_DISK_IO(paths({"base.vmdk"}, 0), false).read(nullptr, count, 0));
  EXPECT_FALSE(RAW_DISK_IO("", false).is_open() || RAW_DISK_IO(dir.path("none"), false).is_open());
}

TEST(PartitionMap, VolumesOfABootRecord) {
  check_cases("media/map", [](const strings& c) {
    bytes disk(number(c[1]));
    for (size_t i = 2; i < c.size(); ++i) {
      const strings words = cells(c[i], ' ');
      const uint64_t at = number(words[0]);
      disk.resize(std::max<uint64_t>(disk.size(), at + 512));
      uint8_t* const record = &disk[at];
      uint8_t* entry = record + 446;
      for (size_t n = 1; n < words.size(); ++n) {
        const strings values = cells(words[n]);
        if (values.size() == 1) {
          std::copy_n((words[n] + "    ").begin(), 8, record + 3);
          continue;
        }
        entry[4] = static_cast<uint8_t>(number(values[0]));
        zk::store_le32(&entry[8], number32(values[1]));
        zk::store_le32(&entry[12], number32(values[2]));
        entry += 16;
      }
      record[510] = 0x55;
      record[511] = 0xAA;
    }
    VOLUME_LIST volumes(3);
    string text = joined(partition_map(disk.data(), number(c[1]), volumes, c[0] == "carving"));
    for (const auto& v : volumes)
      text += " " + joined(v.m_start_sector, v.m_num_sectors, v.m_type, v.m_sector_size,
                           v.m_file_system, v.m_sectors_per_cluster);
    return text;
  });
}

}  // namespace
