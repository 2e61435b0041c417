// Raw sources, as cases.txt tells: extents and chains of a VMware disk, plain images, the map of a
// boot record.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "media/disk_chain_check.h"
#include "media/partition_map.h"
#include "media/raw_disk_io.h"
#include "media/vmdk_chain.h"
#include "media/vmdk_extent.h"
#include "tests/support/check_cases.h"
#include "tests/support/temp_dir.h"
#include "text/zk_wide.h"
#include "tools/disk_text_builder.h"
#include "tools/vmdk_builder.h"
#include "uni/stretch.h"

namespace {

using bytes = std::vector<uint8_t>;
using std::string;

// Writes an extent and reads of it, here and there; the keys and the volumes found in it.
string written(const temp_dir& dir, const string& name, const bytes& made) {
  VMDK_EXTENT extent;
  const bool valid = extent.open(zk::utf8_to_wide(dir.write(name, made)), false);
  for (const uint64_t offset : {uint64_t{0}, uint64_t{5000}, ~uint64_t{0}, uint64_t{1} << 40}) {
    uint32_t count = 8192;
    bytes out(count);
    static_cast<void>(extent.read_extent(extent.m_fd, out.data(), offset, count));
  }
  if (!valid) return "refused";
  string found = joined(extent.m_cid, extent.m_parent_cid, extent.m_encoding, extent.m_parent_hint,
                        extent.m_descriptor_lines.size());
  for (const uint64_t offset : extent.m_volume_offsets) found += joined("", offset);
  for (const uint32_t size : extent.m_volume_sector_sizes) found += joined("", size);
  return found;
}

string write_extent(const temp_dir& dir, const test_case& c) {
  return written(dir, c["file"], vmdk_from_text(c["keys"], c["grains"], c.inputs));
}

// A folder with the table's extents.
const temp_dir& extents() {
  static const temp_dir dir;
  static bool filled = false;
  if (!filled) {
    for (const test_case& each : cases_of("media/extent")) write_extent(dir, each);
  }
  filled = true;
  return dir;
}

std::vector<std::wstring> paths(const strings& names) {
  std::vector<std::wstring> found;
  for (const string& name : names) found.push_back(zk::utf8_to_wide(extents().path(name)));
  return found;
}

// How many of each byte stand there, one behind the other; a dot is a zero.
string run_lengths(const bytes& out) {
  string text;
  for (auto at = out.begin(), next = at; at != out.end(); at = next) {
    next = std::find_if(at, out.end(), [&](uint8_t byte) { return byte != *at; });
    text += " " + std::to_string(next - at) + (*at == 0 ? '.' : static_cast<char>(*at));
  }
  return text;
}

// How a disk is seen, and what a read of it leaves in a buffer of question marks.
string seen(const RAW_DISK_IO& disk, const test_case& c) {
  const auto offset = number<int64_t>(c["at"]);
  uint32_t count = number32(c["size"]);
  bytes out(std::max(count, 1U), '?');
  const bool hole = uni::stretch_finder(disk).all_zeros(static_cast<uint64_t>(offset), count);
  const bool came = disk.read(out.data(), count, offset);
  EXPECT_NE(disk.stretch_at(number(c["at"])).end, number(c["at"]));
  return joined(disk.is_open(), disk.size(), hole, came, count) + run_lengths(out);
}

CASES(media, extent) {
  return write_extent(extents(), c);
}

// A disk of 128 tables of 512 bytes each, which come again with each 2 TiB. Only the first holds
// anything.
TEST(Disk, IsLookedOverPieceByPiece) {
  const temp_dir dir;
  vmdk_builder builder{vmdk_builder::keys("b", "ffffffff"), {{0, bytes(512, 'B')}}, 128};
  bytes made = builder.bytes();
  made[20] = made[44] = 1;
  const RAW_DISK_IO disk({zk::utf8_to_wide(dir.write("f", made))}, false);
  EXPECT_FALSE(disk.stretch_at(0).zeros);
  EXPECT_TRUE(disk.stretch_at(512).zeros);
  EXPECT_EQ(disk.stretch_at(512).end, 512 + longest_stretch);
  EXPECT_EQ(disk.stretch_at((1ULL << 41) - 1000).end, 1ULL << 41);
}

TEST(Extent, TakesNoMemoryForTablesThatItHasNot) {
  rusage before = {};
  rusage after = {};
  ::getrusage(RUSAGE_SELF, &before);
  written(extents(), "h", vmdk_from_text("", "", {"44=0x4000000", "1536=3"}));
  ::getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss, before.ru_maxrss + 100000);  // in KiB
}

CASES(media, header) {
  const bytes made = vmdk_from_text("CID=b\nparentCID=ffffffff", "BBB", c.inputs);
  return written(extents(), "h", made);
}

CASES(media, check) {
  std::ostringstream text;
  std::vector<std::wstring> suggested;
  const bool result = disk_chain_check(paths(c.inputs), text, suggested);
  for (const std::wstring& path : suggested) text << '[' << zk::wide_to_utf8(path) << ']';
  return replaced(joined(result, text.str()), extents().path(), "~");
}

CASES(media, disk) {
  return seen(RAW_DISK_IO(paths(c.inputs), false), c);
}

// A read that an extent answers by itself, across grains.
CASES(media, grains) {
  VMDK_EXTENT extent;
  EXPECT_TRUE(extent.open(paths(c.inputs)[0], false));
  uint32_t count = number32(c["size"]);
  bytes out(count, '?');
  const bool came = extent.read_extent(extent.m_fd, out.data(), number(c["at"]), count);
  return joined(came, count) + run_lengths(out);
}

CASES(media, image) {
  const temp_dir dir;
  const string path = dir.write("image", string(number(c["of"]), 'x'));
  const RAW_DISK_IO disk(path, false);
  std::filesystem::resize_file(path, number(c["cut"]));
  return seen(disk, c);
}

TEST(Disk, WithoutABufferOrAFile) {
  uint32_t count = 10;
  EXPECT_FALSE(RAW_DISK_IO(paths({"base.vmdk"}), false).read(nullptr, count, 0));
  EXPECT_FALSE(RAW_DISK_IO("", false).is_open());
  // What was never opened isn't closed.
  EXPECT_NE(::fcntl(STDIN_FILENO, F_GETFD), -1);
  EXPECT_FALSE(RAW_DISK_IO(extents().path("none"), false).is_open());
}

CASES(media, map) {
  const bytes disk = boot_records_from_text(c["size"], c.inputs);
  VOLUME_LIST volumes(3);
  const bool carving = c["carving"] == "yes";
  string text = joined(partition_map(disk.data(), number(c["size"]), volumes, carving));
  for (const auto& v : volumes) {
    text += " " + joined(v.m_start_sector, v.m_num_sectors, v.m_type, v.m_sector_size,
                         v.m_file_system, v.m_sectors_per_cluster);
  }
  return text;
}

}  // namespace
