#include "time/time_format.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <sstream>
#include <stdexcept>

#include "text/zk_environment.h"

namespace zk {
namespace {

constexpr size_t none = std::string::npos;
constexpr size_t most_fraction_digits = 9;

// Write a value in decimal, in exactly so many digits, and return the place behind them.
char* put_digits(char* at, uint32_t value, size_t width) {
  for (size_t i = width; i-- > 0; value /= 10) at[i] = static_cast<char>('0' + value % 10);
  return at + width;
}

// "00" to "99", one behind the other.
constexpr std::array<char, 200> make_two_digits() {
  std::array<char, 200> digits = {};
  for (size_t i = 0; i < digits.size(); ++i) {
    digits[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  }
  return digits;
}
constexpr auto two_digits = make_two_digits();

// The last two digits.
char* put_two(char* at, uint32_t value) {
  return std::copy_n(&two_digits[size_t{2} * (value % 100)], 2, at);
}

template <class... Numbers>
std::string print(const char* format, Numbers... numbers) {
  std::array<char, 30> buffer;
  std::snprintf(buffer.data(), buffer.size(), format, numbers...);
  return buffer.data();
}

std::tm calendar_tm(const _windows_systemtime& fields) {
  std::tm tm = {};
  tm.tm_mon = fields.month - 1;
  tm.tm_mday = fields.day;
  tm.tm_year = fields.year - 1900;
  tm.tm_hour = fields.hour;
  tm.tm_min = fields.minute;
  tm.tm_sec = fields.second;
  return tm;
}

std::optional<std::locale> make_locale(const std::string& name) {
  try {
    return std::locale(name);
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
}

}  // namespace

masked_format::masked_format(const std::string& date_mask, const std::string& time_mask) {
  const size_t year_at = date_mask.find("yy");
  const size_t month_at = date_mask.find("mm");
  const size_t day_at = date_mask.find("dd");
  const size_t month_name_at = date_mask.find("mmm");
  has_date = !date_mask.empty();
  complete = year_at != none && month_at != none && day_at != none;
  month_name = month_name_at != none;
  two_digit_year = year_at != none && date_mask.find("yyyy") == none;
  day_first = month_at >= day_at;
  year_first = year_at == 0;
  for (const char candidate : {' ', '-', '/'}) {
    if (date_mask.find(candidate) != none) separator = candidate;
  }
  comma = separator == ' ' && day_at > (month_name ? month_name_at : month_at) &&
          date_mask.find(',', day_at) != none;

  hour_minute = time_mask.find("hh:mm") != none;
  second = time_mask.find("ss") != none;
  if (const size_t fraction_at = time_mask.find("xxx"); fraction_at != none) {
    const size_t digits = time_mask.rfind('x') - fraction_at + 1;
    fraction_digits = digits > most_fraction_digits ? 0 : digits;
    for (size_t i = digits; i < most_fraction_digits; ++i) fraction_unit *= 10;
  }
}

char* masked_format::put_date(char* at, const _windows_systemtime& fields) const {
  if (!has_date) return at;
  const auto put_year = [&] {
    at = two_digit_year ? put_two(at, fields.year)
                        : put_two(put_two(at, fields.year / 100U), fields.year);
  };
  const auto put_month = [&] {
    if (month_name) {
      const std::string_view name = month_abbreviation(fields.month);
      at = std::copy(name.begin(), name.end(), at);
    } else {
      at = put_two(at, fields.month);
    }
  };

  const char between = complete ? separator : '/';
  if (complete && year_first) {
    put_year();
    *at++ = between;
  }
  if (complete && day_first) {
    at = put_two(at, fields.day);
    *at++ = between;
    put_month();
  } else {
    put_month();
    *at++ = between;
    at = put_two(at, fields.day);
    if (complete && comma) *at++ = ',';
  }
  if (!complete || !year_first) {
    *at++ = between;
    put_year();
  }
  return at;
}

char* masked_format::put_time(char* at, const _windows_systemtime& fields) const {
  if (hour_minute) {
    at = put_two(at, fields.hour);
    *at++ = ':';
    at = put_two(at, fields.minute);
  }
  if (second) {
    *at++ = ':';
    at = put_two(at, fields.second);
  }
  if (fraction_digits != 0) {
    *at++ = '.';
    const auto nanoseconds = static_cast<uint32_t>(fields.nanosecond);
    at = put_digits(at, nanoseconds / fraction_unit, fraction_digits);
  }
  return at;
}

bool format_masked(std::string& date_out, std::string& time_out, const time& t,
                   const std::string& date_mask, const std::string& time_mask) {
  date_out.clear();
  time_out.clear();
  if (!t.valid) return false;
  const masked_format format(date_mask, time_mask);
  std::array<char, std::max(longest_date, longest_time)> text;
  date_out.assign(text.data(), format.put_date(text.data(), t.fields));
  time_out.assign(text.data(), format.put_time(text.data(), t.fields));
  return true;
}

bool find_user_locale(std::string& name) {
  // An unset variable leaves its percent signs in place, and no locale has such a name.
  for (const char* candidate : {"", "%LC_TIME%", "%LANG%"}) {
    name = candidate;
    if (make_locale(expand_environment(name, false))) return true;
  }
  name.clear();
  return false;
}

locale_dates::locale_dates() {
  std::string name;
  if (find_user_locale(name)) user_locale = make_locale(name);
}

std::optional<std::string> locale_dates::date(const _windows_systemtime& fields) const {
  if (!user_locale) return std::nullopt;
  const std::tm tm = calendar_tm(fields);
  std::ostringstream text;
  text.exceptions(std::ios::badbit);  // too little memory would cut the text
  text.imbue(*user_locale);
  std::use_facet<std::time_put<char>>(*user_locale).put(text, text, ' ', &tm, 'x');
  return text.str();
}

void format_default(std::string& date_out, std::string& time_out, const time& t, bool with_fraction,
                    bool short_year, const locale_dates* dates, bool nanoseconds) {
  date_out.clear();
  time_out.clear();
  if (!t.valid) return;
  const _windows_systemtime& f = t.fields;
  if (const auto local = dates ? dates->date(f) : std::nullopt) {
    date_out = *local;
  } else if (short_year) {
    date_out = print("%02d-%02d-%02d", f.year - (f.year < 2000 ? 1900 : 2000), f.month, f.day);
  } else {
    date_out = print("%04d-%02d-%02d", f.year, f.month, f.day);
  }
  if (!with_fraction) {
    time_out = print("%02d:%02d:%02d", f.hour, f.minute, f.second);
  } else if (nanoseconds) {
    time_out = print("%02d:%02d:%02d.%09lld", f.hour, f.minute, f.second,
                     static_cast<long long>(f.nanosecond));
  } else {
    time_out = print("%02d:%02d:%02d.%03d", f.hour, f.minute, f.second, f.millisecond);
  }
}

std::string_view month_abbreviation(int month) {
  static constexpr std::array<std::string_view, 12> names = {
      "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return month >= 1 && month <= 12 ? names[static_cast<size_t>(month - 1)] : std::string_view();
}

}  // namespace zk
