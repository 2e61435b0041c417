#include "tests/support/check_cases.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <map>
#include <utility>

std::map<std::string, known_kinds>& declared_kinds() {
  static std::map<std::string, known_kinds> kinds;
  return kinds;
}

void require_known(const std::vector<test_case>& cases, const known_kinds& kinds) {
  for (const test_case& each : cases) {
    const auto known = kinds.find(each.kind);
    if (known == kinds.end()) throw each.error("unknown kind '" + each.kind + "'");
    const auto [fewest, most] = known->second;
    const size_t count = each.inputs.size();
    if (count < fewest) throw each.error("missing input: " + joined(count, fewest));
    if (count > most) throw each.error("surplus input: " + joined(count, most));
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

case_kind::case_kind(const std::string& table_name, size_t fewest, size_t most)
    : table(table_name) {
  declared_kinds()[file_of(table)][table.substr(table.rfind('/') + 1)] = {fewest, most};
}

void case_kind::check(const std::function<std::string(const test_case&)>& shown) const {
  const std::string file = file_of(table);
  require_known(parse_cases(file, source_file(file)), declared_kinds()[file]);
  for (const test_case& each : cases_of(table)) {
    try {
      const std::string actual = shown(each);
      if (actual == each.expected) continue;
      ADD_FAILURE_AT(each.file.c_str(), each.line) << difference(each.expected, actual);
    } catch (const std::exception& wrong) {
      ADD_FAILURE_AT(each.file.c_str(), each.line) << wrong.what() << "\n";
    }
  }
}
