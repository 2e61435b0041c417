// Whole runs of the program, as cases.txt and faults.txt tell: a shell's lines, and all that came.
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <ios>
#include <map>

#include "tests/support/check_cases.h"
#include "tests/support/shown.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"
#include "tools/sample_records.h"
#include "tools/vmdk_builder.h"

namespace {

using sample::record;
using std::string;

const case_kind runs("cli/cases.txt/run");
const case_kind real("cli/cases.txt/real");
const case_kind system_faults("cli/faults.txt/system");
const case_kind call_faults("cli/faults.txt/calls");
const case_kind fault_loops("cli/faults.txt/loops");
const case_kind limits("cli/faults.txt/limits");
const case_kind traced("cli/faults.txt/traced");
const case_kind mounted("cli/faults.txt/mounted");
const case_kind devices("cli/faults.txt/devices");

struct run_result {
  string out;
  string err;
  int status;  // as a shell sees it; 128 and more for a signal
};

// The run's details, from the program's name to the command line, as one line of a word.
string without_details(string text) {
  for (size_t at = 0; (at = text.find("udx - limited", at)) != string::npos;) {
    const size_t end = std::min(text.find("\"\n\n", at), text.size());
    text.replace(at, end + 3 - at, "<details>\n");
  }
  return text;
}

// Lines side by side: a usual row as the URL in it, behind the name of its file where that is new,
// and a last line that doesn't end as a word.
string side_by_side(const string& text) {
  strings lines = cells(text, '\n');
  const bool whole = lines.back().empty();
  lines.pop_back();
  string shown;
  string file;
  for (const string& line : lines) {
    const strings row = cells(line);
    const string url = row.size() == 17 ? row[9] : "";
    const string& source = row.back();
    const string usual =
        "2021-03-04,05:06:07.000 UTC,,,,,,,URL ," + url + ",,,0,,0," + url + "," + source;
    if (url.empty() || line != usual) {
      shown += " " + line;
      continue;
    }
    if (source != file) shown += " <rows of " + source + ">";
    file = source;
    shown += " " + url;
  }
  return shown + (whole ? "" : " <unended line>");
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
    const string start = "cd '" + dir.path() +
                         "'; exec </dev/null 3>&- >out 2>err; udx='" UDX_PROGRAM
                         "' preload=" UDX_PRELOAD " shim='" UDX_SHIM "' examples='" UDX_SOURCE
                         "/examples' tests='" UDX_SOURCE
                         "/tests/cli'; . \"$tests/runs.sh\"; . \"$tests/fault_loops.sh\"\n";
    const int ended = std::system((start + lines).c_str());
    return {read_file(dir.path("out")), read_file(dir.path("err")),
            WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended)};
  }
  // What comes of a shell's line in a fresh copy of the inputs.
  string shown(const string& line) const {
    const run_result found = run("fresh\n" + line);
    const string written = found.out + read_file(dir.path("work/rows"));
    const string titled = replaced(without_details(written), header_line, "<titles>\n");
    const string out = side_by_side(in_words(titled));
    const string help = source_file("tests/cli/help.txt");
    const string err = in_words(replaced(found.err, help, "<help>"));
    // The example stays as it was, and as the sample maker writes it.
    EXPECT_EQ(read_file(dir.path("work/index.dat")), source_file("examples/index.dat"));
    return "exit " + std::to_string(found.status) + (out.empty() ? "" : " | out" + out) +
           (err.empty() ? "" : " | err " + err);
  }
  void check_loops(const string& failing) const {
    if (*UDX_SHIM == '\0') GTEST_SKIP() << "the sanitizers' runtime wants to be first";
    if (UDX_EMULATED) GTEST_SKIP() << "thousands of runs take an emulator too long";
    fault_loops.check([&](const test_case& each) {
      return shown("failing=" + failing + "; " + each.whole_input);
    });
  }
  void check(const case_kind& kind) const {
    kind.check([this](const test_case& each) { return shown(each.whole_input); });
  }
};

TEST_F(Runs, Cases) {
  check(runs);
}

TEST_F(Runs, FaultsOfTheSystem) {
  check(system_faults);
}

TEST_F(Runs, FaultsOfCalls) {
  if (*UDX_SHIM == '\0') GTEST_SKIP() << "the sanitizers' runtime wants to be first";
  check(call_faults);
}

TEST_F(Runs, Limits) {
  if (*UDX_SHIM == '\0') GTEST_SKIP() << "the sanitizers' runtime wants all memory";
  if (UDX_EMULATED) GTEST_SKIP() << "the emulator doesn't fit the limits";
  check(limits);
}

// In two tests, which run side by side.
TEST_F(Runs, GivePartOfTheirRowsWhateverAllocationFails) {
  check_loops("allocations");
}
TEST_F(Runs, GivePartOfTheirRowsWhateverCallFails) {
  check_loops("calls");
}

TEST_F(Runs, ChangeNoInput) {
  check(traced);
  if (run("strace -o trace true").status != 0) GTEST_SKIP() << "no strace: compared files alone";
}

TEST_F(Runs, InputsCanLieWhereNothingCanBeWritten) {
  if (run("fresh && mounted true").status != 0) GTEST_SKIP() << "no folder mounts read-only";
  check(mounted);
}

TEST_F(Runs, ResultsCanLieOnTheSearchedDevice) {
  if (run("fresh && has_devices").status != 0) {
    GTEST_SKIP() << "needs loop devices, the rights for them, addpart and mkfs.ext4";
  }
  check(devices);
}

// Real indexes, where a folder of them is named when the build is configured.
using RealIndexes = Runs;
TEST_F(RealIndexes, EveryRecordOnTheGrid) {
  check(real);
}

}  // namespace
