// A reader of lines from standard input.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace uni {

class stdin_stream {
 public:
  stdin_stream();
  virtual ~stdin_stream() = default;

  // Reads the next line, or the next 4095 characters of a longer one, into `out`, without its
  // line end if `strip_line_end` is set. Text after a NUL is lost. False at the end of input, with
  // `out` empty.
  virtual bool read_line(std::string& out, bool strip_line_end);

  // The same, decoded from UTF-8. A wrong byte cuts `out` before it and doesn't change the result.
  virtual bool read_line_wide(std::wstring& out, bool strip_line_end);

 private:
  static constexpr int buffer_size = 4096;

  std::vector<char> buffer;
  std::FILE* file;
};

}  // namespace uni
