#include "tests/support/case_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"

strings cells(const std::string& row, char separator) {
  strings found;
  for (size_t begin = 0, end = 0; begin <= row.size(); begin = end + 1) {
    end = std::min(row.find(separator, begin), row.size());
    found.push_back(row.substr(begin, end - begin));
  }
  return found;
}

std::string source_file(const std::string& name) {
  return read_file(UDX_SOURCE "/" + name);
}

namespace {

std::string unescaped(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] == '\\' ? text[++i] : '\1';
    const size_t at = std::string("ntr0").find(c);
    out += c == 'x' ? static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16))
           : at < 4 ? "\n\t\r\0"[at]
                    : text[i];
    if (c == 'x') i += 2;
  }
  return out;
}

}  // namespace

std::vector<test_case> cases_of(const std::string& table) {
  const size_t slash = table.rfind('/');
  std::string file = "tests/" + table.substr(0, slash);
  if (!file.ends_with(".txt")) file += "/cases.txt";
  std::vector<test_case> found;
  for (const std::string& line : cells(source_file(file), '\n')) {
    const size_t arrow = std::min(line.find(" =>"), line.size());
    strings parts = cells(line.substr(0, arrow), '|');
    parts.push_back(line.substr(std::min(arrow + 3, line.size())));
    for (std::string& part : parts) {
      part.erase(part.find_last_not_of(' ') + 1).erase(0, part.find_first_not_of(' '));
      part = unescaped(part);
    }
    if (parts[0] == table.substr(slash + 1))
      found.push_back({line, {parts.begin() + 1, parts.end() - 1}, parts.back()});
  }
  if (found.empty()) throw std::runtime_error("no cases: " + table);
  return found;
}

void check_cases(const std::string& table,
                 const std::function<std::string(const strings& inputs)>& shown) {
  for (const auto& [line, inputs, expected] : cases_of(table))
    EXPECT_EQ(shown(inputs), expected) << line;
}
