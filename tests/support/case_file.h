// Cases in text files, tests/FOLDER/cases.txt or another name. A line is
// `kind | input | input => expected`; blanks around each don't count, and \n \t \r \0 \xHH stand
// for those characters.
#pragma once

#include <cstdint>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using strings = std::vector<std::string>;

// The cells of a row.
strings cells(const std::string& row, char separator = ',');

// A text with `to` for each `from`.
inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at; (at = text.find(from)) != std::string::npos;) text.replace(at, from.size(), to);
  return text;
}

// What a file of the source tree holds.
std::string source_file(const std::string& name);

struct test_case {
  std::string line;
  strings inputs;
  std::string expected;
};

// The cases of "FOLDER/KIND", or "FOLDER/NAME.txt/KIND". Throws if there is none.
std::vector<test_case> cases_of(const std::string& table);

// Expects of each case what stands behind its arrow.
void check_cases(const std::string& table,
                 const std::function<std::string(const strings& inputs)>& shown);

inline uint64_t number(const std::string& text) {
  return std::stoull(text, nullptr, 0);
}
inline uint32_t number32(const std::string& text) {
  return static_cast<uint32_t>(number(text));
}

// Values side by side, apart by bars.
template <class... Values>
std::string joined(const Values&... values) {
  std::ostringstream out;
  out << std::boolalpha;
  const char* between = "";
  ((out << between << values, between = "|"), ...);
  return out.str();
}

// What standard error holds where a line is wiped, and the header line with the default separator.
inline const std::string wide_wipe = "\x1B[2K\r" + std::string(27, ' ') + "\r";
inline const std::string narrow_wipe = "\x1B[2K\r" + std::string(4, ' ') + "\r";
inline const std::string header_line =
    "last mod date,last mod time,access date,access time,expires date,expires time,last sync date,"
    "last sync time,type,url,user,filename,file size,directory,count,HTTP header,"
    "index.dat filename\n";
