// Realistic records for samples and benchmarks, the same on every run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/index_builder.h"

namespace sample {

// The cache directories that the records below lie in.
const std::vector<std::string>& directory_names();

// The n-th record of an endless series: mostly URL records with all their fields, of two to four
// blocks, now and then a REDR or a LEAK record.
record typical_record(uint64_t n);

// A small index with a record of each kind and the cases an examiner meets.
index_file small_index();

}  // namespace sample
