// The file layer, on real files.
#include "uni/fileio.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <numeric>

#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "uni/fileio_output.h"

namespace {

using bytes = std::vector<uint8_t>;

bytes counting(size_t size) {
  bytes made(size);
  std::iota(made.begin(), made.end(), uint8_t{0});
  return made;
}

TEST(FileOpen, RefusesWhatIsNoFileAndLeaksNothing) {
  const temp_dir dir;
  ASSERT_EQ(mkfifo(dir.path("fifo").c_str(), 0600), 0);
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  dir.path("sock").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  close(fd);
  for (const std::string& path : {std::string(), dir.path("none"), dir.path("fifo"),
                                  dir.path("sock"), std::string("/"), std::string("bad\xFF")}) {
    for (const bool write : {false, true}) {
      uni::fileio file;
      EXPECT_FALSE(file.open(path, write)) << path;
      EXPECT_EQ(file.is_open() + file.size() + file.measure_size(), 0);
    }
  }
  uni::fileio reopened(dir.write("f", "x"));
  EXPECT_TRUE(reopened.open(dir.path("f")));
  reopened.close();
  const int next = dup(0);  // the lowest free number
  EXPECT_EQ(next, fd);
  close(next);
}

TEST(FileOpen, ModesAndSizes) {
  const temp_dir dir;
  const mode_t old = umask(0);
  const uni::fileio made(dir.path("new///\\"), true, false, true);
  umask(old);
  struct stat record;
  ASSERT_TRUE(uni::path_stat(dir.path("new"), record));
  EXPECT_EQ(record.st_mode & 0777, 0606u);
  EXPECT_EQ(uni::open_mode_for(uni::fileio::access::read).creation_mode, 0404u);
  EXPECT_FALSE(uni::fileio(dir.path("absent"), true).is_open());  // no truncation, no creation
  EXPECT_FALSE(uni::path_exists_stat(dir.path("absent")));
  const std::string kept = dir.write("kept", "abc");
  const auto kept_size = uni::fileio(kept, true).size(),
             emptied_size = uni::fileio(kept, true, false, true).size();
  EXPECT_EQ(joined(kept_size, emptied_size, uni::fileio(L"/proc/cpuinfo").size(),
                   uni::fileio(L"/dev/null").size()),
            "3|0|262144|0");
  bytes block;
  std::filesystem::resize_file(kept, 1ULL << 32);
  EXPECT_FALSE(uni::load_file(block, kept, 10));  // 0 in the low 32 bits of its size
  EXPECT_FALSE(uni::load_file(block, dir.write("g", "abc"), 0) ||
               !uni::load_file(block, dir.path("g"), 2));
  EXPECT_EQ(block, (bytes{'a', 'b'}));
}

TEST(FileRead, BoundsAreTheSizeAtOpen) {
  const temp_dir dir;
  const std::string path = dir.write("f", counting(10));
  uni::fileio from_disk(path), from_memory;
  from_memory.open_memory(counting(10));
  std::ofstream(path, std::ios::app) << "grown";  // isn't seen
  for (const uni::fileio* file : {&from_disk, &from_memory}) {
    struct read_case {
      uint32_t count;
      int64_t offset;
      bool result;
      uint32_t got;
    };
    for (const auto& c : std::vector<read_case>{{4, 0, true, 4},
                                                {4, 9, true, 1},
                                                {4, 10, false, 4},
                                                {4, 11, false, 4},
                                                {0, 3, true, 0},
                                                {99, 0, true, 10},
                                                {4, -1, false, 4}}) {
      bytes buffer(100, 0xFF);
      uint32_t count = c.count;
      const bool result = file->read_at(buffer.data(), count, c.offset);
      EXPECT_EQ(joined(result, count), joined(c.result, c.got)) << c.offset;
      EXPECT_EQ(buffer[0], c.result && c.got != 0 ? c.offset : 0xFF);
      EXPECT_EQ(buffer[c.result ? c.got : 0], 0xFF);
    }
    uint64_t wide = 1ULL << 32, past = 3;
    EXPECT_FALSE(file->read_at_wide(nullptr, wide, 0) || file->read_at_wide(nullptr, past, 10));
    EXPECT_EQ(wide - past, 1ULL << 32);
    bytes block = {7};
    EXPECT_TRUE(file->read_block(block, 0, 5) && block == bytes{7} &&
                file->read_block(block, 100, 8));
    EXPECT_EQ(block, (bytes{8, 9}));
    EXPECT_FALSE(file->read_block(block, 1, 10) || file->read_block(block, -1, 0));
  }
  EXPECT_FALSE(from_memory.open(path));  // memory mode refuses to reopen
  from_memory.close();
  EXPECT_TRUE(from_memory.open(path));
}

TEST(FileRead, ShrunkAndUnreadable) {
  const temp_dir dir;
  const std::string path = dir.write("f", counting(10));
  const uni::fileio file(path), memory("/proc/self/mem");  // whose first byte can't be read
  bytes block;
  for (const auto& [size, left] : {std::pair{4, 4u}, {0, 10u}}) {  // nothing came: the full size
    ASSERT_EQ(truncate(path.c_str(), size), 0);
    EXPECT_TRUE(file.read_block(block, 10, 0));
    EXPECT_EQ(block.size(), left);
  }
  uint32_t count = 5;
  ASSERT_TRUE(memory.is_open());
  EXPECT_FALSE(memory.read_at(block.data(), count, 0));
  EXPECT_EQ(count, 0xFFFFFFFF);
}

TEST(FileWrite, AtTheEndAndAtAnOffset) {
  const temp_dir dir;
  const std::string path = dir.write("f", "");
  uni::fileio on_disk(path, true), in_memory;
  in_memory.open_memory({});
  for (uni::fileio* file : {&on_disk, &in_memory}) {
    std::ostringstream none, text;
    text << "!";
    EXPECT_TRUE(file->append("hello", 5) && file->write_at("J", 1, 0));
    EXPECT_TRUE(file->write_at("ows", 3, 4));  // past the end by two
    EXPECT_TRUE(file->append_text(none) && file->append_text(text) && !file->append(nullptr, 1));
    bytes all;
    ASSERT_TRUE(file->read_block(all, 99, 0));
    EXPECT_EQ(std::string(all.begin(), all.end()), "Jellows!");
  }
  EXPECT_FALSE(uni::fileio(path).append("x", 1));  // opened for reading
  EXPECT_TRUE(in_memory.set_permissions("644") && on_disk.set_permissions("420"));  // in decimal
  struct stat record;
  ASSERT_TRUE(uni::path_stat(path, record));
  EXPECT_EQ(record.st_mode & 07777, 0644u);
  EXPECT_FALSE(uni::fileio().set_permissions("420"));
}

TEST(OutputStream, BlocksReachTheFileWhenFullAndAtClose) {
  const temp_dir dir;
  const std::string path = dir.path("rows");
  uni::fileio file(path, true, false, true);
  std::ostream& out = *file.attach_output();
  out << std::string(262143, 'a') << std::flush;
  EXPECT_EQ(read_file(path).size(), 0u);
  for (const char* text : {"b", "tail\n"}) {
    out << text << std::flush;
    EXPECT_EQ(read_file(path).size(), 262144u) << text;
  }
  file.close();
  EXPECT_EQ(read_file(path), std::string(262143, 'a') + "btail\n");
  EXPECT_EQ(file.attach_output(), nullptr);
  uni::fileio_output closed(&file, 16);
  closed << "x";
  EXPECT_FALSE(closed.good());
  ASSERT_TRUE(file.open(path, true, false, true));
  *file.attach_output() << "lost";
  ASSERT_TRUE(file.open(path, true));  // reopening doesn't flush
  file.close();
  EXPECT_EQ(read_file(path), "");

  uni::fileio full("/dev/full", true);
  std::ostream& stopped = *full.attach_output();
  stopped << std::string(300000, 'a') << std::string(300000, 'b');
  EXPECT_FALSE(stopped.good());
  EXPECT_EQ(stopped.rdbuf()->sputn("more", 4), 0);  // no room is left, and none is invented
  uni::null_out_stream null;
  null << std::string(100000, 'x') << 1 << std::endl;
  EXPECT_TRUE(null.good());
}

}  // namespace
