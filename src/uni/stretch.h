// Where a source of bytes holds nothing, so that it reads as zeros and needn't be read.
#pragma once

#include <cstdint>

namespace uni {

// What a source knows of the bytes from a place on, up to `end`, an offset after that place.
struct stretch {
  uint64_t end;
  bool zeros;  // nothing is stored there; false also where that isn't known
};

// For a reader that moves forward. The source, which is borrowed and has a member
// `stretch stretch_at(uint64_t offset) const`, is asked once for each stretch.
template <class Source>
class stretch_finder {
 public:
  explicit stretch_finder(const Source& asked) : source(asked) {}

  // Whether all `count` bytes from `offset` are known to be zeros.
  bool all_zeros(uint64_t offset, uint64_t count) {
    if (offset >= current.end) current = source.stretch_at(offset);
    return current.zeros && offset < current.end && count <= current.end - offset;
  }

 private:
  const Source& source;
  stretch current = {0, false};
};

}  // namespace uni
