#include "uni/stdin_stream.h"

#include <cstdio>
#include <string>

#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace uni {

stdin_stream::stdin_stream() : buffer(buffer_size), file(stdin) {}

bool stdin_stream::read_line(std::string& out, bool strip_line_end) {
  out.clear();
  if (!file || !std::fgets(buffer.data(), buffer_size, file)) return false;
  out = buffer.data();
  if (strip_line_end) zk::strip_line_end(out);
  return true;
}

bool stdin_stream::read_line_wide(std::wstring& out, bool strip_line_end) {
  std::string line;
  const bool read = read_line(line, strip_line_end);
  zk::decode_utf8(line, out);
  return read;
}

}  // namespace uni
