// The file layer, on real files, and messages byte for byte.
#include <sys/resource.h>
#include <sys/stat.h>
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "tests/support/check_cases.h"
#include "tests/support/temp_dir.h"
#include "text/zk_wide.h"
#include "uni/console.h"
#include "uni/fileio.h"
#include "uni/fileio_output.h"
#include "uni/stdin_stream.h"

namespace {

using std::string;

// The text, a long run of one character as the character*its length.
string counted(const string& text) {
  string out;
  for (size_t at = 0, end = 0; at < text.size(); at = end) {
    end = std::min(text.find_first_not_of(text[at], at), text.size());
    out += end - at > 20 ? joined(text[at]) + "*" + joined(end - at) : text.substr(at, end - at);
  }
  return out;
}

string repeated(const string& text, const string& times) {
  string made;
  for (uint64_t n = number(times); n > 0; --n) made += text;
  return made;
}

// A case's folder, and the file that its steps are about. What they make gets its rights from the
// program alone.
struct stage {
  temp_dir dir;
  uni::fileio file;
  std::ostream* out = nullptr;

  explicit stage(const strings& ahead) {
    umask(0);
    dir.write("f", "0123456789");
    EXPECT_EQ(mknod(dir.path("fifo").c_str(), S_IFIFO | 0600, 0), 0);
    EXPECT_EQ(mknod(dir.path("sock").c_str(), S_IFSOCK | 0600, 0), 0);
    play_all(ahead);
  }

  string read(auto reader, auto count, const string& at) const {
    string buffer(99, '.');
    const bool result = (file.*reader)(buffer.data(), count, number<int64_t>(at));
    return joined(result, count, buffer.erase(buffer.find_last_not_of('.') + 1));
  }

  string play(const string& step) {
    strings c = cells(step, ' ');
    c.resize(3);
    const string& verb = c[0];
    const string& text = c[1];
    const string path = text.empty() || text[0] == '/' ? text : dir.path(text);
    const auto size = static_cast<uint32_t>(text.size());
    std::vector<uint8_t> block = {'.'};
    const auto with_block = [&](bool result) {
      return joined(result, string(block.begin(), block.end()));
    };
    if (verb == "open") return joined(file.open(path, !c[2].empty(), false, c[2] == "new"));
    if (verb == "size") return joined(file.is_open(), file.size(), file.measure_size());
    if (verb == "read") return read(&uni::fileio::read_at, number32(text), c[2]);
    if (verb == "wide") return read(&uni::fileio::read_at_wide, number(text), c[2]);
    if (verb == "block") {
      return with_block(file.read_block(block, number<int64_t>(text), number(c[2])));
    }
    if (verb == "load") return with_block(uni::load_file(block, path, number32(c[2])));
    if (verb == "append") return joined(file.append(text.empty() ? nullptr : text.data(), size));
    if (verb == "write") return joined(file.write_at(text.data(), size, number(c[2])));
    if (verb == "text") return joined(file.append_text(std::ostringstream(text)));
    if (verb == "rights") return joined(file.set_permissions(text));
    if (verb == "mode") {
      return joined(static_cast<int>(std::filesystem::status(path).permissions()));
    }
    if (verb == "exists") return joined(uni::path_exists_stat(path));
    if (verb == "held") return counted(read_file(path)) + ".";
    if (verb == "attach") {
      out = file.attach_output();
      return joined(out != nullptr);
    }
    if (verb == "place") {
      auto& buffer = dynamic_cast<uni::fileio_ostream&>(*out->rdbuf());
      std::ranges::fill(buffer.space().first(number(c[2])), text[0]);
      buffer.advance(number(c[2]));
      return joined(buffer.space().size());
    }
    if (verb == "out") return joined((*out << repeated(text, c[2])).flush().good());
    if (verb == "clear") {
      out->clear();
    } else if (verb == "memory") {
      file.open_memory({text.begin(), text.end()});
    } else if (verb == "cut") {
      std::filesystem::resize_file(path, number(c[2]));
    } else if (verb == "close") {
      file.close();
    } else {
      throw std::invalid_argument("unknown verb: " + verb);
    }
    return "-";
  }

  string play_all(const strings& steps) {
    string seen;
    for (const string& step : steps) seen += (seen.empty() ? "" : " ") + play(step);
    return seen;
  }
};

ptrdiff_t open_files() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// What steps give behind those that set the stage. None may leave a file open.
string played(const strings& ahead, const strings& steps) {
  const ptrdiff_t before = open_files();
  const string seen = stage(ahead).play_all(steps);
  EXPECT_EQ(open_files(), before);
  return seen;
}

CASES(uni, steps) {
  return played({}, c.inputs);
}

CASES(uni, memory) {
  const string seen = played({"open f write"}, c.inputs);
  // The bytes take the place of a file.
  EXPECT_EQ(played({"open f", "memory 0123456789"}, c.inputs), seen);
  return seen;
}

TEST(File, BlockForWhichThereIsNoMemory) {
  if (UDX_SANITIZED) GTEST_SKIP() << "the sanitizers' runtime wants all memory";
  rlimit usual = {};
  ::getrlimit(RLIMIT_AS, &usual);
  const rlimit tight = {1 << 30, usual.rlim_max};
  ::setrlimit(RLIMIT_AS, &tight);
  EXPECT_EQ(played({"cut f 2199023255552", "open f"}, {"block 2199023255552 0"}), "false|.");
  ::setrlimit(RLIMIT_AS, &usual);
}

TEST(File, OnlyRegularFilesAreAskedForHoles) {
  EXPECT_EQ(uni::fileio("/usr").stretch_at(0).end, ~0ULL);
}

TEST(File, WithoutAFile) {
  EXPECT_FALSE(uni::same_file(-1, 1) || uni::same_file(-1, -1));
  uni::fileio none;
  uni::fileio_output closed(&none, 16);
  uni::null_out_stream null;
  EXPECT_FALSE(closed << "x");
  EXPECT_TRUE(null << string(100000, 'x') << 1 << std::endl);
}

// Takes at most three characters at a time.
struct small_steps : uni::streambuf_generic_output<char> {
  string taken;
  small_steps() : streambuf_generic_output(8) {}
  int write_bytes(const char* data, int count) override {
    taken.append(data, static_cast<size_t>(std::min(count, 3)));
    return std::min(count, 3);
  }
};

TEST(File, FlushedBufferIsWrittenInSteps) {
  small_steps buffer;
  std::ostream out(&buffer);
  EXPECT_EQ((out << "abcdefg", buffer.taken), "");
  EXPECT_EQ((out << std::flush, buffer.taken), "abcdefg");
  EXPECT_EQ((out << "0123456789", buffer.taken), "abcdefg01234567");
}

int print(bool to_stderr, int limit, bool raw, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int result = uni::console_print(to_stderr, limit, format, arguments, raw);
  va_end(arguments);
  return result;
}

CASES(uni, message) {
  const string& how = c[0];
  const string text = repeated(c["text"], c["times"]);
  const int limit = number<int>(c["limit"]);
  int result = 0;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  if (how == "message") {
    result = uni::message("%s", text.c_str());
  } else if (how == "nothing") {
    result = uni::message(nullptr) + uni::set_terminal_title(nullptr);
  } else if (how == "percent") {
    uni::progress_percent("%s", text.c_str());
  } else if (how != "print" && how != "raw" && how != "raw error") {
    throw std::invalid_argument("unknown verb: " + how);
  } else {
    result = print(how == "raw error", limit, how != "print", "%s", text.c_str());
  }
  const string err = testing::internal::GetCapturedStderr();
  return joined(result, counted(err), counted(testing::internal::GetCapturedStdout()));
}

// What is read of a standard input that holds a case's text.
CASES(uni, lines) {
  const temp_dir dir;
  EXPECT_NE(std::freopen(dir.write("in", c[1]).c_str(), "r", stdin), nullptr);
  uni::stdin_stream in;
  string seen;
  std::wstring line;
  while (in.read_line_wide(line, c[0] == "stripped")) seen += "[" + zk::wide_to_utf8(line) + "]";
  return seen;
}

}  // namespace
