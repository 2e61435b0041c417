#include "tools/case_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <ios>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr const char* escape_names = "ntr0\\";
constexpr const char* escape_values = "\n\t\r\0\\";

std::string trimmed(const std::string& text) {
  const size_t first = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

std::string unescaped(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      out += text[i];
      continue;
    }
    const std::string name = text.substr(i + 1, 1);
    const size_t known = std::string(escape_names).find(name);
    if (name == "x" && i + 3 < text.size()) {
      out += static_cast<char>(number<uint8_t>("0x" + text.substr(i + 2, 2)));
      i += 3;
    } else if (!name.empty() && known != std::string::npos) {
      out += escape_values[known];
      ++i;
    } else {
      throw std::invalid_argument("unknown escape: \\" + name);
    }
  }
  return out;
}

// Takes apart the text of a whole case.
void parse_case(test_case& parsed, const std::string& text) {
  const size_t arrow = text.find(" =>");
  const size_t behind = arrow + 3;
  if (arrow == std::string::npos || (behind < text.size() && text[behind] != ' ')) {
    throw std::invalid_argument("no arrow");
  }
  const std::string given = text.substr(0, arrow);
  strings parts = cells(given, '|');
  parsed.kind = trimmed(parts[0]);
  parsed.expected = unescaped(trimmed(text.substr(behind)));
  parts.erase(parts.begin());
  for (const std::string& part : parts) parsed.inputs.push_back(unescaped(trimmed(part)));
  const size_t bar = std::min(given.find('|'), given.size());
  parsed.whole_input = unescaped(trimmed(given.substr(std::min(bar + 1, given.size()))));
}

}  // namespace

std::runtime_error test_case::error(const std::string& what) const {
  return std::runtime_error(file + ":" + std::to_string(line) + ": " + what);
}

std::vector<test_case> parse_cases(const std::string& file, const std::string& text) {
  std::vector<test_case> found;
  const strings lines = cells(text, '\n');
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty() || lines[i].starts_with('#')) continue;
    test_case& next = found.emplace_back();
    next.file = file;
    next.line = static_cast<int>(i) + 1;
    if (lines[i].starts_with(' ')) throw next.error("no case to go on");
    std::string whole = lines[i];
    while (i + 1 < lines.size() && lines[i + 1].starts_with(' ')) {
      whole += " " + trimmed(lines[++i]);
    }
    try {
      parse_case(next, whole);
    } catch (const std::invalid_argument& wrong) {
      throw next.error(wrong.what());
    }
  }
  return found;
}

std::string file_of(const std::string& table) {
  const std::string place = "tests/" + table.substr(0, table.rfind('/'));
  return place.ends_with(".txt") ? place : place + "/cases.txt";
}

std::vector<test_case> cases_of(const std::string& table) {
  const std::string file = file_of(table);
  std::vector<test_case> found = parse_cases(file, source_file(file));
  const std::string kind = table.substr(table.rfind('/') + 1);
  std::erase_if(found, [&](const test_case& each) { return each.kind != kind; });
  if (found.empty()) throw std::runtime_error(file + ": no case of " + kind);
  return found;
}

std::string source_file(const std::string& name) {
  return read_file(UDX_SOURCE "/" + name);
}

std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

strings cells(const std::string& row, char separator) {
  strings found;
  for (size_t begin = 0, end = 0; begin <= row.size(); begin = end + 1) {
    end = std::min(row.find(separator, begin), row.size());
    found.push_back(row.substr(begin, end - begin));
  }
  return found;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    const size_t known = std::string(escape_values, 5).find(c);
    char code[5];
    std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(c));
    out += known != std::string::npos ? std::string{'\\', escape_names[known]}
           : c < ' ' || c > '~'       ? std::string(code)
                                      : std::string(1, c);
  }
  return out;
}
