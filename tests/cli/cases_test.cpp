// Whole runs of the program, as cases.txt and faults.txt tell: a shell's lines, and all that came.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <map>

#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"
#include "tools/sample_records.h"
#include "tools/vmdk_builder.h"

namespace {

using sample::record;
using std::string;

struct run_result {
  string out, err;
  int status;  // as a shell sees it; 128 and more for a signal
};

void replace(string& text, const string& from, const string& to, const string& with) {
  for (size_t at; (at = text.find(from)) != string::npos;)
    text.replace(at, std::min(text.find(to, at + from.size()), text.size()) + to.size() - at, with);
}

sample::byte_vector record_bytes(const string& url) {
  return record::url(url).last_mod(sample::filetime_of(2021, 3, 4, 5, 6, 7)).blocks(8).bytes();
}

// A folder of inputs, and what a shell's line gives in a copy of it.
struct Runs : testing::Test {
  const temp_dir dir;

  // An index of that size with records: where each lies, and its URL.
  void make(const string& file, uint64_t size, const std::map<uint64_t, string>& records) const {
    std::ofstream out(dir.write("inputs/" + file, sample::header_bytes({}, size)),
                      std::ios::in | std::ios::binary);
    for (const auto& [at, url] : records) {
      const sample::byte_vector bytes = record_bytes(url);
      out.seekp(static_cast<std::streamoff>(at)) << string(bytes.begin(), bytes.end());
    }
    out.close();
    std::filesystem::resize_file(dir.path("inputs/" + file), size);
  }
  void make_disk(const string& file, const string& parent,
                 const std::map<uint32_t, string>& records, uint32_t tables = 2) const {
    vmdk_builder made{vmdk_builder::keys(file, parent), {}, tables};
    for (const auto& [grain, url] : records) (made.grains[grain] = record_bytes(url)).resize(4096);
    dir.write("inputs/" + file, made.bytes());
  }
  Runs() {
    make("one.dat", 12288, {{8192, "u"}});
    make("small", 12288, {{8192, "a"}, {9216, "b"}, {10240, "c"}, {11264, "d"}});
    make("large", 16785408, {{8192, "a"}, {40064, "b"}, {5000064, "c"}, {16781312, "d"}});
    make("sixteen", 16777216, {{8192, "a"}});
    std::map<uint64_t, string> many;
    for (uint64_t at = 8192; at < 500000; at += 1024) many[at] = string(900, 'r');
    make("many", 500000, many);
    make_disk("base", "ffffffff", {{20, "a"}, {35, "c"}});
    make_disk("leaf", "base", {{21, "b"}, {36, "d"}});
    make_disk("first", "ffffffff", {{200, "o"}}, 8);
    make_disk("mid", "first", {}, 8);
    make_disk("new", "mid", {{200, "n"}}, 8);
    dir.write("inputs/packed", record::redr("r").bytes());
    dir.write("inputs/index.dat", sample::small_index().bytes());
    EXPECT_EQ(run("cd inputs && make_rest").err, "");
  }

  // Runs a shell's lines, with the standard streams and no descriptor 3.
  run_result run(const string& lines) const {
    const string script = "exec </dev/null 3>&- >out 2>err; udx='" UDX_PROGRAM "' shim='" UDX_SHIM
                          "'; . '" UDX_SOURCE "/tests/cli/runs.sh'\n";
    const int ended = std::system(("cd " + dir.path() + "; " + script + lines).c_str());
    return {read_file(dir.path("out")), read_file(dir.path("err")),
            WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended)};
  }
  string shown(const string& line) const {
    run_result found = run("fresh\n" + line);
    found.out += read_file(dir.path("work/rows"));
    replace(found.out, "udx - limited", "\"\n\n", "details\n");
    replace(found.err, source_file("tests/cli/help.txt"), "", "help");
    for (string* const text : {&found.out, &found.err}) {
      replace(*text, narrow_wipe, "", "%");
      replace(*text, wide_wipe, "", "~");
    }
    strings lines = cells(found.out, '\n');
    const bool whole = lines.back().empty();
    lines.back() = "part";
    if (whole) lines.pop_back();
    string out, file;
    for (const string& each : lines) {
      const strings row = cells(each);
      const string url = row.size() == 17 ? row[9] : "", source = row.back();
      const bool usual = !url.empty() && each == "2021-03-04,05:06:07.000 UTC,,,,,,,URL ," + url +
                                                     ",,,0,,0," + url + "," + source;
      if (usual && source != file) out += " " + source + ":";
      if (usual) file = source;
      out += " " + (usual ? url : each + "\n" == header_line ? "titles" : each);
    }
    return std::to_string(found.status) + ";" + out + (found.err.empty() ? ";" : "; " + found.err);
  }
  void check(const string& kind) const {
    check_cases("cli/" + kind, [&](const strings& c) {
      string line;
      for (const string& part : c) line += (line.empty() ? "" : " | ") + part;
      const string seen = shown(line);
      // The example stays as it was, and as the sample maker writes it.
      EXPECT_EQ(read_file(dir.path("work/index.dat")), source_file("examples/index.dat"));
      return seen;
    });
  }
};

TEST_F(Runs, CasesAndFaultsOfTheSystem) {
  check("cases.txt/run");
  check("faults.txt/system");
}

TEST_F(Runs, FaultsOfCallsAndLimits) {
  if (*UDX_SHIM == '\0') GTEST_SKIP() << "the sanitizers' runtime wants all memory and to be first";
  check("faults.txt/calls");
  if (UDX_EMULATED) GTEST_SKIP() << "the emulator doesn't fit the limits: calls alone";
  check("faults.txt/limits");
}

TEST_F(Runs, ChangeNoInput) {
  check("faults.txt/traced");
  if (run("strace -o trace true").status != 0) GTEST_SKIP() << "no strace: compared files alone";
}

TEST_F(Runs, InputsCanLieWhereNothingCanBeWritten) {
  if (run("fresh && mounted true").status != 0) GTEST_SKIP() << "no folder mounts read-only";
  check("faults.txt/mounted");
}

// Real indexes, where a folder of them is named when the build is configured.
using RealIndexes = Runs;
TEST_F(RealIndexes, EveryRecordOnTheGrid) {
  check("cases.txt/real");
}

}  // namespace
