// Builds random indexes, some of them damaged, the same for the same seed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

#include "tools/index_builder.h"

namespace sample {

struct random_index_builder {
  uint32_t seed = 0;
  byte_vector bytes;

  // An index, or records from the very first block on, with damage that leaves the times alone. It
  // takes about `end` bytes.
  void fill_index(size_t end);

  // Lays records down from `at` to `end`, the last perhaps beyond it: on the grid or off it, by
  // `skew` or anyhow, some inside the one before, with noise between.
  void fill(size_t at, size_t end, size_t skew = 0);

  // A number below `n`, a chance, and a choice.
  uint32_t pick(uint64_t n) { return static_cast<uint32_t>(random() % n); }
  bool once_in(uint32_t n) { return pick(n) == 0; }
  template <class Value>
  Value one_of(std::initializer_list<Value> values) {
    return values.begin()[pick(values.size())];
  }

 private:
  std::string next_text(uint32_t most);
  uint64_t next_filetime();
  uint32_t next_dos();
  byte_vector next_record();

  std::mt19937 random;
};

}  // namespace sample
