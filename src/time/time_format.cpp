#include "time/time_format.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <ios>
#include <locale>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "text/zk_environment.h"

namespace zk {
namespace {

constexpr size_t none = std::string::npos;
constexpr size_t most_fraction_digits = 9;

template <class... Numbers>
std::string print(const char* format, Numbers... numbers) {
  std::array<char, 30> buffer;
  std::snprintf(buffer.data(), buffer.size(), format, numbers...);
  return buffer.data();
}

std::optional<std::locale> make_locale(const std::string& name) {
  errno = 0;
  try {
    return std::locale(name);
  } catch (const std::runtime_error&) {
    // A locale that lacked memory is there: without it dates would have another form.
    if (errno == ENOMEM) throw std::bad_alloc();
    return std::nullopt;
  }
}

}  // namespace

masked_format::masked_format(const std::string& date_mask, const std::string& time_mask,
                             std::string_view separator, std::string_view label) {
  place.fill(hidden);
  if (!date_mask.empty()) lay_out_date(date_mask);
  date_end = form.size();
  form += separator;
  const size_t time_begin = form.size();
  lay_out_time(time_mask);
  if (form.size() != time_begin) form += label;
  form += separator;
}

void masked_format::lay_out_date(const std::string& mask) {
  const size_t year_found = mask.find("yy");
  const size_t month_found = mask.find("mm");
  const size_t day_found = mask.find("dd");
  const size_t name_found = mask.find("mmm");
  month_name = name_found != none;
  const bool two_digit_year = year_found != none && mask.find("yyyy") == none;
  char separator = '/';
  for (const char candidate : {' ', '-', '/'}) {
    if (mask.find(candidate) != none) separator = candidate;
  }
  const bool comma = separator == ' ' && day_found > (month_name ? name_found : month_found) &&
                     mask.find(',', day_found) != none;
  const bool complete = year_found != none && month_found != none && day_found != none;
  if (!complete) separator = '/';
  const bool year_first = complete && year_found == 0;
  const bool day_first = complete && month_found >= day_found;

  const auto lay_out_year = [&] {
    if (!two_digit_year) lay_out(century, 2);
    lay_out(year, 2);
  };
  if (year_first) {
    lay_out_year();
    form += separator;
  }
  if (day_first) {
    lay_out(day, 2);
    form += separator;
  }
  lay_out(month, month_name ? 3 : 2);
  if (!day_first) {
    form += separator;
    lay_out(day, 2);
    if (complete && comma) form += ',';
  }
  if (!year_first) {
    form += separator;
    lay_out_year();
  }
}

void masked_format::lay_out_time(const std::string& mask) {
  if (mask.find("hh:mm") != none) {
    lay_out(hour, 2);
    form += ':';
    lay_out(minute, 2);
  }
  if (mask.find("ss") != none) {
    form += ':';
    lay_out(second, 2);
  }
  const size_t found = mask.find("xxx");
  if (found == none) return;
  const size_t digits = mask.rfind('x') - found + 1;
  if (digits > most_fraction_digits) return;
  fraction_digits = digits;
  for (size_t i = digits; i < most_fraction_digits; ++i) fraction_unit *= 10;
  form += '.';
  lay_out(fraction, digits);
}

void masked_format::lay_out(part which, size_t width) {
  place[which] = form.size();
  form.append(width, ' ');
}

bool format_masked(std::string& date_out, std::string& time_out, const time& t,
                   const std::string& date_mask, const std::string& time_mask) {
  date_out.clear();
  time_out.clear();
  if (!t.valid) return false;
  const masked_format format(date_mask, time_mask);
  std::string text(format.space(), ' ');
  text.resize(static_cast<size_t>(format.put(text.data(), t.fields) - text.data()));
  date_out = text.substr(0, format.date_size());
  time_out = text.substr(format.date_size());
  return true;
}

bool find_user_locale(std::string& name, std::optional<std::locale>& found) {
  // An unset variable leaves its percent signs in place, and no locale has such a name.
  for (const char* candidate : {"", "%LC_TIME%", "%LANG%"}) {
    name = candidate;
    found = make_locale(expand_environment(name, false));
    if (found) return true;
  }
  name.clear();
  return false;
}

locale_dates::locale_dates() {
  std::string name;
  find_user_locale(name, user_locale);
}

std::string locale_dates::locale_name() const {
  return user_locale ? user_locale->name() : "";
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
