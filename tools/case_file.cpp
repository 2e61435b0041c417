#include "tools/case_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <ios>
#include <iterator>
#include <map>
#include <optional>
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

// How long the name before an input's equal sign is; 0 if there is none.
size_t name_size(const std::string& input) {
  const size_t end = input.find_first_not_of("abcdefghijklmnopqrstuvwxyz_");
  return end != std::string::npos && input[end] == '=' ? end : 0;
}

// What a line of titles says.
struct known_inputs {
  std::map<std::string, std::optional<std::string>> named;  // and what each is if it is left out
  size_t unnamed = 0;
  bool list = false;

  void add(const std::string& title) {
    const bool optional = title.starts_with('[') && title.ends_with(']');
    const std::string input = optional ? title.substr(1, title.size() - 2) : title;
    const size_t sign = input.find('=');
    if (list || input.empty()) throw std::invalid_argument("no title: '" + title + "'");
    if (sign == std::string::npos) {
      list = input.ends_with("...");
      unnamed += list ? 0 : 1;
    } else {
      const auto usual = optional ? std::optional(input.substr(sign + 1)) : std::nullopt;
      const bool added = named.emplace(input.substr(0, sign), usual).second;
      if (!added) throw std::invalid_argument("title given twice: " + title);
    }
  }

  // Takes the inputs with names from the others.
  void take_named(test_case& c) const {
    strings others;
    for (const std::string& input : c.inputs) {
      const size_t sign = named.empty() || (list && !others.empty()) ? 0 : name_size(input);
      if (sign == 0) {
        others.push_back(input);
        continue;
      }
      const std::string name = input.substr(0, sign);
      if (!named.contains(name)) throw std::invalid_argument("unknown name: " + name);
      const bool added = c.named.emplace(name, input.substr(sign + 1)).second;
      if (!added) throw std::invalid_argument("input given twice: " + name);
    }
    c.inputs = others;
    for (const auto& [name, usual] : named) {
      const bool missing = !usual && !c.named.contains(name);
      if (missing) throw std::invalid_argument("missing input: " + name);
      c.named.emplace(name, usual.value_or(""));
    }
    const std::string counts = joined(others.size(), unnamed);
    if (others.size() < unnamed) throw std::invalid_argument("missing input: " + counts);
    if (others.size() > unnamed && !list) throw std::invalid_argument("surplus input: " + counts);
  }
};

using known_kinds = std::map<std::string, known_inputs>;

// Adds the kinds of a line of titles, which was taken apart as a case is.
void add_kinds(known_kinds& kinds, const test_case& line) {
  known_inputs titles;
  for (const std::string& title : line.inputs) titles.add(title);
  if (titles.unnamed + titles.list > 3) {
    throw std::invalid_argument("more than three inputs without names");
  }
  for (const std::string& kind : cells(line.kind.substr(0, line.kind.size() - 1))) {
    const bool added = kinds.emplace(trimmed(kind), titles).second;
    if (!added) throw std::invalid_argument("titles given twice: " + trimmed(kind));
  }
}

}  // namespace

const std::string& test_case::operator[](const std::string& name) const {
  const auto found = named.find(name);
  if (found == named.end()) throw error("no input has the name " + name);
  return found->second;
}

std::runtime_error test_case::error(const std::string& what) const {
  return std::runtime_error(file + ":" + std::to_string(line) + ": " + what);
}

std::vector<test_case> parse_cases(const std::string& file, const std::string& text) {
  std::vector<test_case> found;
  known_kinds kinds;
  const strings lines = cells(text, '\n');
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty() || lines[i].starts_with('#')) continue;
    test_case next;
    next.file = file;
    next.line = static_cast<int>(i) + 1;
    if (lines[i].starts_with(' ')) throw next.error("no case to go on");
    std::string whole = lines[i];
    while (i + 1 < lines.size() && lines[i + 1].starts_with(' ')) {
      whole += " " + trimmed(lines[++i]);
    }
    try {
      const size_t sign = std::min(whole.find_first_of(":|="), whole.size() - 1);
      if (whole[sign] == ':') {
        parse_case(next, whole.insert(sign + 1, "|"));
        add_kinds(kinds, next);
        continue;
      }
      parse_case(next, whole);
      const auto known = kinds.find(next.kind);
      if (known == kinds.end())
        throw std::invalid_argument("no titles ahead of '" + next.kind + "'");
      known->second.take_named(next);
    } catch (const std::invalid_argument& wrong) {
      throw next.error(wrong.what());
    }
    found.push_back(next);
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

test_case case_at(const std::string& place) {
  const std::string file = place.substr(0, place.rfind(':'));
  for (const test_case& each : parse_cases(file, source_file(file))) {
    if (file + ":" + std::to_string(each.line) == place) return each;
  }
  throw std::runtime_error(place + ": no case begins here");
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
