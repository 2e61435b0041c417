// A line that is put together piece by piece.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "text/line_sink.h"

namespace zk {

// It is composed in memory that its sink lends, or where that is too small, in a buffer of its own,
// which is reused and grows only for a longer line.
class text_line {
 public:
  // The sink is borrowed.
  explicit text_line(line_sink& target) : sink(target) {}

  // Begins an empty line.
  void begin() {
    bytes = sink.space();
    used = 0;
    is_lent = true;
  }

  // Ends the line with a line feed and hands it to the sink.
  void end() {
    put("\n");
    if (is_lent) return sink.advance(used);
    sink.take({bytes.data(), used});
  }

  void put(std::string_view text) {
    std::copy(text.begin(), text.end(), space_for(text.size()));
    used += text.size();
  }
  // For a writer that knows only how long its text is at most: `write` gets the place of the next
  // byte and returns the one after its text. It must not write more than `most` bytes.
  template <class Writer>
  void put(size_t most, Writer write) {
    char* const begin = space_for(most);
#ifdef NDEBUG
    used += static_cast<size_t>(write(begin) - begin);
#else
    // In memory of just that size, where a write beyond it shows.
    std::vector<char> text(most + 1, guard);
    const auto size = static_cast<size_t>(write(text.data()) - text.data());
    assert(size <= most && text[most] == guard);
    std::copy_n(text.data(), size, begin);
    used += size;
#endif
  }

  void drop_last(size_t count) {
    used -= count;
  }

 private:
  static constexpr char guard = '\x7F';

  char* space_for(size_t count) {
    if (count > bytes.size() - used) widen(used + count);
    return bytes.data() + used;
  }

  void widen(size_t count) {
    if (count > own.size()) own.resize(std::max(count, 2 * own.size()));
    if (is_lent) std::copy_n(bytes.data(), used, own.data());
    bytes = own;
    is_lent = false;
  }

  line_sink& sink;
  std::span<char> bytes;
  size_t used = 0;
  bool is_lent = true;
  std::vector<char> own;
};

}  // namespace zk
