// Tests that are tables of cases.
//
//   CASES(front, filter, 2) { return joined(takes(compiled(c[0]), c[1])); }
//
// is the test front.filter: it expects of each case of the kind "filter" in tests/front/cases.txt,
// which has two inputs, what the body gives for the inputs `c`. A test with a range of numbers
// names the most behind the fewest. All kinds of a file must be declared in the same program.
#pragma once

// Each test has these from here.
// IWYU pragma: begin_exports
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/case_file.h"
// IWYU pragma: end_exports

#include <functional>
#include <limits>
#include <map>

// The fewest and the most inputs of a case.
struct input_count {
  size_t fewest;
  size_t most;
};
using known_kinds = std::map<std::string, input_count>;
inline constexpr size_t any_number = std::numeric_limits<size_t>::max();

// The kinds that this program declares, by file.
std::map<std::string, known_kinds>& declared_kinds();

// Throws the error of the first case whose kind isn't known or whose inputs are too few or many.
void require_known(const std::vector<test_case>& cases, const known_kinds& kinds);

// Where two texts part: both, one below the other, and a mark below the first place that differs.
std::string difference(const std::string& expected, const std::string& actual);

// One kind of case. Declares it as it is constructed, before any test runs.
class case_kind {
 public:
  case_kind(const std::string& table_name, size_t fewest, size_t most);
  case_kind(const std::string& table_name, size_t inputs) : case_kind(table_name, inputs, inputs) {}

  // Expects of each case what it says. Checks the whole file's form first.
  void check(const std::function<std::string(const test_case&)>& shown) const;

 private:
  std::string table;
};

#define CASES(folder, kind, ...)                                                                 \
  static std::string folder##_##kind(const strings& c);                                          \
  static const case_kind folder##_##kind##_cases(#folder "/" #kind, __VA_ARGS__);                \
  TEST(folder, kind) {                                                                           \
    folder##_##kind##_cases.check([](const test_case& c) { return folder##_##kind(c.inputs); }); \
  }                                                                                              \
  static std::string folder##_##kind([[maybe_unused]] const strings& c)
