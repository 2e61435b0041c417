// VMware disks through the program.
#include <gtest/gtest.h>

#include "tests/support/run_udx.h"
#include "tests/support/vmdk_builder.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;
using std::string;

// The URLs of the rows, each with a blank behind it.
string urls(const run_result& run) {
  string found;
  for (const string& line : cells(run.out, '\n')) {
    if (cells(line).size() == 17 && line + "\n" != header_line) found += cells(line)[9] + " ";
  }
  return found;
}

// The records lie in a grain that the base and the leaf both hold.
TEST(Disks, RowsOfTheNewestInAnyOrder) {
  const temp_dir dir;
  const auto write = [&](const string& name, const string& cid, const string& parent,
                         const string& url) {
    byte_vector index =
        sample::index_file().add(record::url(url)).add(record::redr("kept")).bytes();
    byte_vector grain(index.begin() + 8192, index.end());
    grain.resize(vmdk_builder::grain_bytes);
    vmdk_builder made{vmdk_builder::keys(cid, parent)};
    made.tables = 8;  // enough for holes to move the places of progress lines
    if (!url.empty()) made.grains[200] = grain;
    return dir.write(name, made.bytes());
  };
  const string base = write("base", "b", "ffffffff", "old"), mid = write("mid", "m", "b", ""),
               leaf = write("leaf", "l", "m", "new");
  struct disk_case {
    strings files;
    string urls;
  };
  for (const auto& c : std::vector<disk_case>{{{base}, "old kept "},
                                              {{leaf, base, mid}, "new kept "},
                                              {{mid, leaf, base}, "new kept "}}) {
    string list, source;
    for (const string& file : c.files)
      list += (list.empty() ? "" : " | ") + file, source += (source.empty() ? "" : "; ") + file;
    const run_result run = run_udx({"-vmdk", list, "-quiet"});
    EXPECT_EQ(urls(run), c.urls);
    EXPECT_TRUE(run.out.ends_with(",kept,,,0,,0,," + source + "\n")) << run.out;
    string progress;
    for (const char* percent : {"0", "49", "98"})
      progress += narrow_wipe + "percent done: " + percent + "\r";
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, progress + wide_wipe + "success");
  }
  EXPECT_EQ(urls(run_udx({"-vmdk", leaf, "-vmdk", mid, "-vmdk", base, "-f", "x"})), "new kept ");
  const run_result none = run_udx({"-vmdk", dir.write("text", "x")});
  EXPECT_EQ(none.err, dir.path("text") + " can't be opened\n\nsuggested array: -vmdk \"" +
                          dir.path("text") + "\"\n" + wide_wipe);
  EXPECT_TRUE(none.status == 255 && urls(none).empty());
}

// Disks as a virtualisation tool writes them, run where it is installed.
TEST(Disks, WrittenByQemu) {
  if (std::system("command -v qemu-img qemu-io >/dev/null") != 0) GTEST_SKIP() << "no qemu-img";
  const temp_dir dir;
  for (const char* url : {"old", "new", "more"}) {
    byte_vector index = sample::index_file().add(record::redr(url)).bytes();
    index.resize(65536);
    dir.write(url, index);
  }
  const string base = dir.path("base.vmdk"), mid = dir.path("mid.vmdk"),
               leaf = dir.path("leaf.vmdk");
  const string script = "cd " + quoted(dir.path()) +
                        " && { qemu-img create -f vmdk base.vmdk 64M &&"
                        " qemu-io -f vmdk -c 'write -s old 1048576 65536' -c 'write -s more "
                        "33619968 65536' base.vmdk &&"
                        " qemu-img create -f vmdk -b base.vmdk -F vmdk mid.vmdk && qemu-io -f vmdk "
                        "-c 'write -s more 5242880 65536' mid.vmdk &&"
                        " qemu-img create -f vmdk -b mid.vmdk -F vmdk leaf.vmdk && qemu-io -f vmdk "
                        "-c 'write -s new 1048576 65536' leaf.vmdk; } >/dev/null 2>&1";
  ASSERT_EQ(std::system(script.c_str()), 0);
  for (const string& list : {base + "|" + mid + "|" + leaf, leaf + "," + base + ";" + mid}) {
    EXPECT_EQ(urls(run_udx({"-vmdk", list})), "new more more ");
  }
  const string err = run_udx({"-vmdk", leaf}).err;  // the suggested list works when pasted
  const size_t begin = err.find("suggested array: -vmdk \"") + 24;
  const string suggested = err.substr(begin, err.find("\"\n", begin) - begin);
  EXPECT_EQ(suggested, leaf + " | " + mid + " | " + base);
  EXPECT_EQ(urls(run_udx({"-vmdk", suggested})), "new more more ");
}

}  // namespace
