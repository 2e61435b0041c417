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

std::string source_file(const std::string& name) {
  return read_file(UDX_SOURCE "/" + name);
}

void check_cases(const std::string& cases,
                 const std::function<std::string(const strings& inputs)>& shown) {
  const size_t slash = cases.rfind('/');
  std::string file = "tests/" + cases.substr(0, slash);
  if (!file.ends_with(".txt")) file += "/cases.txt";
  int count = 0;
  for (const std::string& line : cells(source_file(file), '\n')) {
    const size_t arrow = std::min(line.find(" =>"), line.size());
    strings parts = cells(line.substr(0, arrow), '|');
    parts.push_back(line.substr(std::min(arrow + 3, line.size())));
    for (std::string& part : parts) {
      part.erase(part.find_last_not_of(' ') + 1).erase(0, part.find_first_not_of(' '));
      part = unescaped(part);
    }
    if (parts[0] != cases.substr(slash + 1)) continue;
    EXPECT_EQ(shown({parts.begin() + 1, parts.end() - 1}), parts.back()) << line;
    ++count;
  }
  EXPECT_GT(count, 0) << cases;
}
