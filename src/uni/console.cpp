#include "uni/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace uni {
namespace {

constexpr int longest_message = 4096;
constexpr int progress_limit = 60;

// The erase sequence, then 27 blanks or 4.
constexpr const char* wide_wipe = "\x1B[2K\r                           \r";
constexpr const char* narrow_wipe = "\x1B[2K\r    \r";

void put(std::FILE* stream, const char* text) {
  std::fputs(text, stream);
  std::fflush(stream);
}

// The formatted text, at most `limit` - 1 characters of it, and its whole length in `length`.
[[gnu::format(printf, 2, 0)]] std::string format_text(int limit, const char* format,
                                                      std::va_list arguments, int& length) {
  std::string text(static_cast<size_t>(limit) + 1, '\0');
  length = std::vsnprintf(text.data(), static_cast<size_t>(limit), format, arguments);
  text.resize(static_cast<size_t>(std::clamp(length, 0, std::max(limit - 1, 0))));
  return text;
}

}  // namespace

void fill_standard_streams() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    // The lowest free number is this one.
    if (::fcntl(fd, F_GETFD) == -1) ::open("/dev/null", O_RDWR);
  }
}

void clear_line() {
  put(stderr, wide_wipe);
}

int message(const char* format, ...) {
  clear_line();
  if (!format) return 0;
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list again;
  va_copy(again, arguments);
  int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  if (length == -1 || length > longest_message) {
    length = 0;
  } else {
    put(stderr, format_text(length, format, again, length).c_str());
  }
  va_end(again);
  return std::max(length, 0);
}

void progress_percent(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  console_print(true, progress_limit, format, arguments, false);
  va_end(arguments);
}

int console_print(bool to_stderr, int limit, const char* format, std::va_list arguments, bool raw) {
  const int buffer_size = limit < 257 ? 256 : limit + 1;
  int length = 0;
  std::string text = format_text(buffer_size - 1, format, arguments, length);
  if (length == -1) return 0;
  text.resize(std::min(text.size(), static_cast<size_t>(std::max(limit, 0))));
  const int cut_length = static_cast<int>(text.size());
  if (!raw) text = narrow_wipe + text + "\r";
  std::erase(text, '\n');
  if (to_stderr) {
    put(stderr, text.c_str());
  } else if (raw) {
    set_terminal_title(text.c_str());
  } else {
    put(stdout, text.c_str());
  }
  return cut_length;
}

bool set_terminal_title(const char* text) {
  if (!text) return false;
  std::printf("\x1B]0;%s\x07", text);
  std::fflush(stdout);
  return true;
}

}  // namespace uni
