// Where lines of text are written: a file's buffer or any stream.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace zk {

class line_sink {
 public:
  virtual ~line_sink() = default;

  // Memory that is lent for the next line, to compose it in place. May be empty.
  virtual std::span<char> space() = 0;

  // Takes the line in the first `count` bytes of that memory.
  virtual void advance(size_t count) = 0;

  // Takes a line that was composed elsewhere.
  virtual void take(std::string_view line) = 0;
};

}  // namespace zk
