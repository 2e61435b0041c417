// The tables that the tests are, and that the fuzz targets start from: cases in text files,
// tests/FOLDER/cases.txt or another name. Before the cases of a kind, or of several, a line
// says what their inputs are:
//
//   KIND, KIND: TITLE | TITLE => what is expected
//   KIND | INPUT | INPUT => EXPECTED
//
// A title is one of these; at most three are of inputs without names.
//
//   path      an input without a name
//   at=       an input with a name, as at=0x80; where the last title is a list, before that
//   [at=0]    the same, and what it is where a case leaves it out
//   part...   as the last title: a list, any number of inputs without names
//
// A case continues in the lines below it that begin with a blank, each line's end counting as one
// blank. Blanks around an input don't count; \n \t \r \0 \\ and \xHH mean those characters.
// An empty line or one that begins with # is no case; any other must be one. What can't be
// understood throws an error that begins with the file and the line.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

using strings = std::vector<std::string>;

struct test_case {
  std::string file;  // from the top of the source tree
  int line = 0;
  std::string kind;
  strings inputs;  // those without a name
  std::map<std::string, std::string> named;
  std::string whole_input;  // all with the bars between
  std::string expected;

  const std::string& operator[](size_t place) const { return inputs.at(place); }
  const std::string& operator[](const std::string& name) const;
  std::runtime_error error(const std::string& what) const;
};

// The cases in a text, which is what `file` holds.
std::vector<test_case> parse_cases(const std::string& file, const std::string& text);

// The file of a table "FOLDER/KIND" or "FOLDER/NAME.txt/KIND", and the cases of that kind in it,
// of which there is at least one.
std::string file_of(const std::string& table);
std::vector<test_case> cases_of(const std::string& table);

// The case that begins at a place "FILE:LINE". Throws if none does.
test_case case_at(const std::string& place);

// What a file of the source tree holds, and any file; nothing where it can't be read.
std::string source_file(const std::string& name);
std::string read_file(const std::string& path);

// The cells of a row.
strings cells(const std::string& row, char separator = ',');

// A text with `to` for each `from`.
std::string replaced(std::string text, const std::string& from, const std::string& to);

// A text as a file of cases would have it.
std::string escaped(const std::string& text);

// A number in decimal or, after 0x, in hexadecimal. A negative one is of the type's own width.
// Throws unless the whole text is one that the type can hold.
template <class Number = uint64_t>
Number number(const std::string& text) {
  const bool negative = text.starts_with('-');
  const bool hexadecimal = text.compare(negative, 2, "0x") == 0;
  const char* const end = text.data() + text.size();
  const char* const digits = text.data() + negative + (hexadecimal ? 2 : 0);
  uint64_t size = 0;
  const auto [last, error] = std::from_chars(digits, end, size, hexadecimal ? 16 : 10);
  const uint64_t most = negative ? uint64_t{1} << (sizeof(Number) * 8 - 1)
                                 : std::numeric_limits<std::make_unsigned_t<Number>>::max();
  if (error != std::errc() || last != end || size > most) {
    throw std::invalid_argument("not a number here: '" + text + "'");
  }
  return static_cast<Number>(negative ? 0 - size : size);
}
inline uint32_t number32(const std::string& text) {
  return number<uint32_t>(text);
}

// Values in one line, with bars between them.
template <class... Values>
std::string joined(const Values&... values) {
  std::ostringstream out;
  out << std::boolalpha;
  const char* between = "";
  ((out << between << values, between = "|"), ...);
  return out.str();
}
