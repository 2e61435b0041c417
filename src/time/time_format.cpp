#include "time/time_format.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <stdexcept>

#include "text/zk_environment.h"

namespace zk {
namespace {

constexpr size_t none = std::string::npos;
constexpr size_t most_fraction_digits = 9;

// Appends `value` in decimal, filled with zeros to at least `width` digits.
void append_number(std::string& out, uint64_t value, size_t width) {
  std::array<char, 20> digits;
  size_t begin = digits.size();
  do {
    digits[--begin] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  const size_t count = digits.size() - begin;
  if (count < width) out.append(width - count, '0');
  out.append(&digits[begin], count);
}

// The fraction of the second, cut to `digits` places.
uint64_t fraction_of(const _windows_systemtime& fields, size_t digits) {
  uint64_t fraction = fields.nanosecond;
  for (size_t i = digits; i < most_fraction_digits; ++i) fraction /= 10;
  return fraction;
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
  }
}

void masked_format::append_date(std::string& out, const _windows_systemtime& fields) const {
  if (!has_date) return;
  const auto put_year = [&] {
    if (two_digit_year) {
      append_number(out, fields.year % 100U, 2);
    } else {
      append_number(out, fields.year, 4);
    }
  };
  const auto put_month = [&] {
    if (month_name) {
      out += month_abbreviation(fields.month);
    } else {
      append_number(out, fields.month, 2);
    }
  };
  const auto put_day = [&] { append_number(out, fields.day, 2); };

  const char between = complete ? separator : '/';
  if (complete && year_first) {
    put_year();
    out += between;
  }
  if (complete && day_first) {
    put_day();
    out += between;
    put_month();
  } else {
    put_month();
    out += between;
    put_day();
    if (complete && comma) out += ',';
  }
  if (!complete || !year_first) {
    out += between;
    put_year();
  }
}

void masked_format::append_time(std::string& out, const _windows_systemtime& fields) const {
  if (hour_minute) {
    append_number(out, fields.hour, 2);
    out += ':';
    append_number(out, fields.minute, 2);
  }
  if (second) {
    out += ':';
    append_number(out, fields.second, 2);
  }
  if (fraction_digits != 0) {
    out += '.';
    append_number(out, fraction_of(fields, fraction_digits), fraction_digits);
  }
}

bool format_masked(std::string& date_out, std::string& time_out, const time& t,
                   const std::string& date_mask, const std::string& time_mask) {
  date_out.clear();
  time_out.clear();
  if (!t.valid) return false;
  const masked_format format(date_mask, time_mask);
  format.append_date(date_out, t.fields);
  format.append_time(time_out, t.fields);
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
