// A line that is put together piece by piece.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace zk {

// Keeps its memory when it is cleared, so that only a line longer than all before it takes more.
class text_line {
 public:
  void clear() { used = 0; }
  size_t size() const { return used; }
  std::string_view text() const { return {bytes.data(), used}; }

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
    if (count > bytes.size() - used) bytes.resize(std::max(used + count, 2 * bytes.size()));
    return bytes.data() + used;
  }

  std::vector<char> bytes;
  size_t used = 0;
};

}  // namespace zk
