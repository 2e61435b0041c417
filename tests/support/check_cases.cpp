#include "tests/support/check_cases.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <set>

std::map<std::string, std::set<std::string>>& declared_kinds() {
  static std::map<std::string, std::set<std::string>> kinds;
  return kinds;
}

void require_known(const std::vector<test_case>& cases, const std::set<std::string>& kinds) {
  for (const test_case& each : cases) {
    if (!kinds.contains(each.kind)) throw each.error("unknown kind '" + each.kind + "'");
  }
}

std::string difference(const std::string& expected, const std::string& actual) {
  const std::string wanted = escaped(expected);
  const std::string found = escaped(actual);
  const auto [at, ignored] =
      std::mismatch(wanted.begin(), wanted.end(), found.begin(), found.end());
  const auto same = static_cast<size_t>(at - wanted.begin());
  return "expected: " + wanted + "\n  actual: " + found + "\n" + std::string(10 + same, ' ') +
         "^ first difference\n";
}

case_kind::case_kind(const std::string& table_name) : table(table_name) {
  declared_kinds()[file_of(table)].insert(table.substr(table.rfind('/') + 1));
}

void case_kind::check(const std::function<std::string(const test_case&)>& shown) const {
  const std::string file = file_of(table);
  require_known(parse_cases(file, source_file(file)), declared_kinds()[file]);
  std::vector<test_case> cases = cases_of(table);
  if (const char* const place = std::getenv("CASE")) {
    const test_case wanted = case_at(place);
    std::erase_if(cases, [&](const test_case& each) {
      return each.file != wanted.file || each.line != wanted.line;
    });
    if (cases.empty()) GTEST_SKIP() << "has no case at " << place;
  }
  for (const test_case& each : cases) {
    try {
      const std::string actual = shown(each);
      if (actual == each.expected) continue;
      ADD_FAILURE_AT(each.file.c_str(), each.line) << difference(each.expected, actual);
    } catch (const std::exception& wrong) {
      ADD_FAILURE_AT(each.file.c_str(), each.line) << wrong.what() << "\n";
    }
  }
}
