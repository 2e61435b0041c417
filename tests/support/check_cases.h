// Tests that are tables of cases.
//
//   CASES(front, filter) { return joined(takes(compiled(c[0]), c[1])); }
//
// is the test front.filter: it expects of each case of the kind "filter" in tests/front/cases.txt
// what the body gives for the case `c`. All kinds of a file must be declared in the same program.
//
// With CASE=FILE:LINE in the environment only the case that begins there is checked, and each test
// without it is skipped.
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
#include <map>
#include <set>

// The kinds that this program declares, by file.
std::map<std::string, std::set<std::string>>& declared_kinds();

// Throws the error of the first case whose kind isn't among these.
void require_known(const std::vector<test_case>& cases, const std::set<std::string>& kinds);

// Where two texts differ: both, one below the other, and a mark below the first place that does.
std::string difference(const std::string& expected, const std::string& actual);

// One kind of case. Declares it as it is constructed, before any test runs.
class case_kind {
 public:
  explicit case_kind(const std::string& table_name);

  // Expects of each case what it says. Checks the whole file's form first.
  void check(const std::function<std::string(const test_case&)>& shown) const;

 private:
  std::string table;
};

#define CASES(folder, kind)                                          \
  static std::string folder##_##kind(const test_case& c);            \
  static const case_kind folder##_##kind##_cases(#folder "/" #kind); \
  TEST(folder, kind) {                                               \
    folder##_##kind##_cases.check(folder##_##kind);                  \
  }                                                                  \
  static std::string folder##_##kind([[maybe_unused]] const test_case& c)
