#include "time/time_parse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ios>
#include <istream>
#include <sstream>
#include <string>
#include <string_view>

#include "text/zk_number.h"
#include "text/zk_string.h"

namespace zk {
namespace {

// A number cut to an integer; 0 where no int holds it.
int cut(double number) {
  return number > -2147483649.0 && number < 2147483648.0 ? static_cast<int>(number) : 0;
}

int number_in(const std::string& text) {
  return cut(std::atof(text.c_str()));
}

// 1 to 12 for an abbreviation in lower case, else 0.
uint32_t month_number(const std::string& name) {
  static constexpr std::array month_number_table = {"jan", "feb", "mar", "apr", "may", "jun",
                                                    "jul", "aug", "sep", "oct", "nov", "dec"};
  const auto found = std::find(month_number_table.begin(), month_number_table.end(), name);
  if (found == month_number_table.end()) return 0;
  return static_cast<uint32_t>(found - month_number_table.begin()) + 1;
}

// Reads the token for the date's field 0, 1 or 2.
bool read_token(std::istream& tokens, size_t field, char separator, std::string& token) {
  constexpr int most_reads_for_second = 3;
  int reads = 0;
  do {
    if (!std::getline(tokens, token, separator)) return false;
    ++reads;
  } while (token.empty() && (field == 2 || (field == 1 && reads < most_reads_for_second)));
  return true;
}

}  // namespace

bool parse_date_fields(const char* date, std::string order, char separator, uint32_t& day,
                       uint32_t& month, uint32_t& year) {
  day = month = year = 0;
  if (order.size() < 3 || !date) return false;
  const size_t month_name_at = order.find("Mon");
  to_upper(order);
  std::string spelled_month = "MON";
  replace_first(order, spelled_month, "M");
  if (order.size() < 3) return false;

  std::istringstream tokens{date};
  tokens.exceptions(std::ios::badbit);  // too little memory isn't a wrong date
  for (size_t field = 0; field < 3; ++field) {
    std::string token;
    if (!read_token(tokens, field, separator, token)) return false;
    uint32_t& target = order[field] == 'Y' ? year : order[field] == 'M' ? month : day;
    if (order[field] != 'Y' && order[field] != 'M' && order[field] != 'D') return false;
    if (field == month_name_at) {
      target = month_number(to_lower(token));
      if (target == 0) return false;
    } else if (!read_number(token.c_str(), target)) {
      return false;
    }
  }
  if (year <= 99) year += year > 30 ? 1900 : 2000;
  return month < 13 && day < 32;
}

bool parse_time_fields(std::string text, int& hour, int& minute, double& seconds) {
  hour = minute = 0;
  seconds = 0;
  trim(text);
  to_lower(text);
  const size_t colon = text.find(':');
  if (colon == std::string::npos) return false;
  const size_t second_colon = text.find(':', colon + 1);
  const size_t m = text.find('m', colon + 1);
  const size_t marker = m == std::string::npos ? std::string::npos : m - 1;
  const bool afternoon = marker != std::string::npos && text[marker] == 'p';
  const double hours = std::atof(text.substr(0, colon).c_str());
  hour = cut(std::trunc(hours) + (afternoon ? 12 : 0));

  // The text from `begin` to the marker less one blank, or to the end where no marker follows.
  const auto up_to_marker = [&](size_t begin) {
    if (marker == std::string::npos || marker < begin) return text.substr(begin);
    std::string part = text.substr(begin, marker - begin);
    if (part.ends_with(' ')) part.pop_back();
    return part;
  };
  std::string minutes;
  if (second_colon != std::string::npos) {
    minutes = text.substr(colon + 1, second_colon - colon - 1);
  } else if (marker != colon) {
    minutes = up_to_marker(colon + 1);
  }
  if (minutes.empty() || minutes.size() > 31) return false;
  minute = number_in(minutes);
  if (second_colon != std::string::npos) {
    seconds = std::atof(up_to_marker(second_colon + 1).c_str());
  }
  return true;
}

bool parse_date_time(const char* date, const char* time, std::string_view order, char separator,
                     _windows_systemtime& fields) {
  if (!date || !*date) return false;
  uint32_t day = 0;
  uint32_t month = 0;
  uint32_t year = 0;
  if (!parse_date_fields(date, std::string(order), separator, day, month, year)) return false;
  int hour = 0;
  int minute = 0;
  double seconds = 0;
  if (time && *time && !parse_time_fields(time, hour, minute, seconds)) return false;
  const int whole = cut(seconds);
  fields.year = static_cast<uint16_t>(year);
  fields.month = static_cast<uint16_t>(month);
  fields.day_of_week = 0;
  fields.day = static_cast<uint16_t>(day);
  fields.hour = static_cast<uint16_t>(hour);
  fields.minute = static_cast<uint16_t>(minute);
  fields.second = static_cast<uint16_t>(whole);
  fields.millisecond = static_cast<uint16_t>(cut((seconds - whole) * 1000 + 0.5));
  return true;
}

}  // namespace zk
