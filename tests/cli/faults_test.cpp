// What an examiner sees when the system fails the program, as faults.txt tells; and that no run
// changes an input.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>

#include "tests/support/case_file.h"
#include "tests/support/run_udx.h"
#include "tests/support/temp_dir.h"
#include "tests/support/vmdk_builder.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;
using std::string;

// A folder with the program, what faults it, and the inputs that faults.txt names.
struct Faults : testing::Test {
  const temp_dir dir;
  std::map<string, string> known = {
      {header_line.substr(0, header_line.size() - 1), "titles"}};  // rows, and their URLs

  void make(const string& file, uint64_t size, const std::map<uint64_t, string>& records) const {
    const string path = dir.write(file, sample::header_bytes({}, size));
    std::filesystem::resize_file(path, size);
    for (const auto& [at, url] : records) {
      const byte_vector bytes =
          record::url(url).last_mod(sample::filetime_of(2021, 3, 4, 5, 6, 7)).blocks(8).bytes();
      std::fstream(path, std::ios::in | std::ios::out | std::ios::binary)
          .seekp(static_cast<std::streamoff>(at))
          .write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    }
  }
  void make_disk(const string& file, const string& parent,
                 const std::map<uint32_t, string>& records) const {
    vmdk_builder made{vmdk_builder::keys(file, parent)};
    for (const auto& [grain, url] : records)
      (made.grains[grain] = record::url(url).blocks(8).bytes()).resize(4096);
    dir.write(file, made.bytes());
  }
  void make_inputs() const {
    make("small", 12288, {{8192, "a"}, {9216, "b"}, {10240, "c"}, {11264, "d"}});
    make("large", 16785408, {{8192, "a"}, {40064, "b"}, {5000064, "c"}, {16781312, "d"}});
    make_disk("base", "ffffffff", {{20, "a"}, {35, "c"}});
    make_disk("leaf", "base", {{21, "b"}, {36, "d"}});
  }
  void SetUp() override {
    std::filesystem::create_symlink(UDX_PROGRAM, dir.path("udx"));
    make_inputs();
    make("sixteen", 16777216, {{8192, "a"}});
    const byte_vector row = record::redr(string(900, 'r')).bytes();
    byte_vector many(128);
    for (int i = 0; i < 400; ++i) many.insert(many.end(), row.begin(), row.end());
    dir.write("many", many);
    for (const char* input : {"-f small", "-f large", "-vmdk base,leaf", "-f many"}) {
      for (const string& line : cells(run(string("./udx ") + input).out, '\n')) {
        if (cells(line).size() == 17) known.try_emplace(line, cells(line)[9]);
      }
    }
  }

  // Runs a shell's line in the folder. `faulty` is the program with the library of faults ahead of
  // it.
  run_result run(const string& line) const {
    const string command = "cd " + quoted(dir.path()) +
                           " && exec >out 2>err 3>&- && rm -f rows\n"
                           "faulty() { LD_PRELOAD=" UDX_SHIM " ./udx \"$@\"; }\n" +
                           line;
    const int ended = std::system(command.c_str());
    return {read_file(dir.path("out")) + read_file(dir.path("rows")), read_file(dir.path("err")),
            WEXITSTATUS(ended)};
  }

  // The status, what came on standard output and in the file `rows`, and the messages: the run's
  // details as a word, a row as its URL, rows of `many` as their number, and each wipe as a tilde.
  string shown(const string& line) const {
    run_result found = run(line);
    string out;
    int long_rows = 0;
    const auto replace = [](string& text, const string& from, const string& to,
                            const string& with) {
      for (size_t at; (at = text.find(from)) != string::npos;)
        text.replace(at, std::min(text.find(to, at + from.size()), text.size()) + to.size() - at,
                     with);
    };
    replace(found.out, "udx - limited", "\"\n\n", "details\n");
    replace(found.err, narrow_wipe, "\r", "");
    replace(found.err, wide_wipe, "", "~");
    for (const string& text : cells(found.out, '\n')) {
      const auto row = known.find(text);
      const string word = row != known.end() ? row->second : text;
      if (row != known.end() && word.size() == 900)
        ++long_rows;
      else if (!word.empty())
        out += word.size() > 200 ? " part" : " " + word;
    }
    if (long_rows != 0) out += " " + std::to_string(long_rows) + " rows";
    return std::to_string(found.status) + ";" + out + (found.err.empty() ? ";" : "; " + found.err);
  }
  void check(const string& kind) const {
    check_cases("cli/faults.txt/" + kind,
                [&](const strings& c) { return make_inputs(), shown(c.back()); });
  }
};

TEST_F(Faults, OfTheSystem) {
  check("system");
}

TEST_F(Faults, OfCalls) {
  if (*UDX_SHIM == '\0') GTEST_SKIP() << "the sanitizers' runtime wants to be the first library";
  check("calls");
}

TEST_F(Faults, OfLimits) {
  if (*UDX_SHIM == '\0') GTEST_SKIP() << "the sanitizers' runtime needs more than a limit leaves";
  byte_vector packed = record::redr("r").bytes();
  for (int i = 0; i < 18; ++i) packed.insert(packed.end(), packed.begin(), packed.end());
  dir.write("packed", packed);
  check("limits");
}

const strings all_modes = {"-f small",
                           "-f large",
                           "-f base",
                           "-vmdk base,leaf",
                           "-pipe <list",
                           "-enumdir ./ -num_subdirs 9",
                           "-enumdir ./ -filter_sig '43 6C' -cmd_start_time 2000-1-1",
                           "-partition base",
                           "-f small -out rows"};

TEST_F(Faults, NoRunChangesAnInput) {
  dir.write("list", "small\nlarge\nbase\nnone\n");
  const bool traced = run("ASAN_OPTIONS=detect_leaks=0 strace -o trace ./udx").status == 0;
  const auto inputs = [&] {
    std::map<string, string> found;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
      const string name = entry.path().filename();
      struct stat facts;
      if (name == "out" || name == "err" || name == "rows" || name == "trace" || name == "udx")
        continue;
      EXPECT_EQ(stat(entry.path().c_str(), &facts), 0);
      found[name] = joined(facts.st_mode, facts.st_size, facts.st_mtim.tv_sec,
                           facts.st_mtim.tv_nsec, facts.st_ctim.tv_sec, facts.st_ctim.tv_nsec) +
                    read_file(entry.path());
    }
    return found;
  };
  for (const char* name : {"small", "large", "base", "leaf", "sixteen", "many", "list"})
    chmod(dir.path(name).c_str(), 0400);
  const auto before = inputs();
  for (const string& mode : all_modes) {
    run((traced ? "ASAN_OPTIONS=detect_leaks=0 strace -f -o trace -e "
                  "trace=%file,ftruncate,fchmod,fallocate ./udx "
                : "./udx ") +
        mode);
    EXPECT_TRUE(inputs() == before) << mode;
    for (const string& call : cells(traced ? read_file(dir.path("trace")) : "", '\n')) {
      for (const char* word : {"O_WRONLY", "O_RDWR", "O_CREAT", "O_TRUNC", "unlink", "rename",
                               "trunc", "chmod", "utime", "fallocate", "mknod"}) {
        EXPECT_TRUE(call.find(word) == string::npos || call.find("\"rows\"") != string::npos)
            << mode << ": " << call;
      }
    }
  }
  if (!traced) GTEST_SKIP() << "no strace: compared what the inputs hold, not how they were opened";
}

TEST_F(Faults, InputsCanLieWhereNothingCanBeWritten) {
  const string mounted =
      "exec unshare -m sh -c 'mount --bind . . && mount -o remount,bind,ro . && cd \"$PWD\" && ! "
      "touch x && exec \"$@\"' sh ";
  if (run(mounted + "true").status != 0) GTEST_SKIP() << "no folder could be mounted read-only";
  for (const char* mode : {"-f small", "-quiet -f large", "-vmdk base,leaf"}) {
    EXPECT_EQ(shown(mounted + "./udx " + mode).substr(0, 25), "0; details titles a b c d") << mode;
  }
}

}  // namespace
