// A line that is put together piece by piece.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace zk {

// It stands in space that is lent to it, or where that is too narrow, in memory of its own. That is
// kept, so that only a line longer than all before it takes more.
class text_line {
 public:
  // Begins an empty line.
  void begin(std::span<char> space) {
    bytes = space;
    used = 0;
    is_lent = true;
  }

  size_t size() const { return used; }
  std::string_view text() const { return {bytes.data(), used}; }
  bool in_lent_space() const { return is_lent; }

  void put(char c) {
    *space_for(1) = c;
    ++used;
  }
  void put(std::string_view text) {
    std::copy(text.begin(), text.end(), space_for(text.size()));
    used += text.size();
  }
  // For a writer that knows only how long its text is at most: `write` gets the place of the next
  // byte and returns the one behind its text.
  template <class Writer>
  void put(size_t most, Writer write) {
    char* const begin = space_for(most);
    used += static_cast<size_t>(write(begin) - begin);
  }

  void drop_last(size_t count) { used -= count; }

 private:
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

  std::span<char> bytes;
  size_t used = 0;
  bool is_lent = true;
  std::vector<char> own;
};

}  // namespace zk
