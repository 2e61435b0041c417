// The printed forms of a time: a date and a time of day, each a text of its own, always of the UTC
// fields. No zone arithmetic is done. A time that isn't valid gives two empty texts.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <locale>
#include <optional>
#include <string>
#include <string_view>

#include "time/zk_time.h"

namespace zk {

// "Jan" to "Dec" for 1 to 12, else empty. English at all times.
std::string_view month_abbreviation(int month);

// "00" to "99", one after the other.
constexpr std::array<char, 200> make_two_digits() {
  std::array<char, 200> digits = {};
  for (size_t i = 0; i < digits.size(); ++i) {
    digits[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  }
  return digits;
}
inline constexpr auto two_digits = make_two_digits();

// Writes two digits of a value below 100.
inline void put_two_digits(char* at, uint32_t value) {
  std::memcpy(at, &two_digits[size_t{2} * value], 2);
}

// A date mask and a time mask, read once and then applied to any number of times.
//
// A date mask holds "yyyy" or "yy", "mmm" (English abbreviation) or "mm", "dd", and one of "/",
// "-" and " " as separator, "/" if it has none. It tells which of day and month comes first, and
// whether the year leads; without all three parts the date is month/day/year. With the separator
// " " and the month before the day, a "," at "dd" or later puts a comma after the day. A time mask
// holds "hh:mm", "ss" and "xxx", a fraction with as many digits as lie from its first "x" to the
// mask's last, at most 9. All else in a mask is ignored, and an empty one gives no text.
class masked_format {
 public:
  // A separator will follow the date and the time of day, and a label any time that isn't empty.
  masked_format(const std::string& date_mask, const std::string& time_mask,
                std::string_view separator = {}, std::string_view label = {});

  // Writes a valid time at `at`, where there must be `space` bytes, and returns the place after
  // the text.
  char* put(char* at, const _windows_systemtime& fields) const;
  size_t space() const { return form.size(); }

  size_t date_size() const { return date_end; }  // in bytes, without the separator

 private:
  enum part { century, year, month, day, hour, minute, second, fraction, parts };
  static constexpr size_t hidden = std::string::npos;

  void lay_out_date(const std::string& mask);
  void lay_out_time(const std::string& mask);
  void lay_out(part which, size_t width);
  void put_digits(char* at, part which, uint32_t value) const {
    if (place[which] != hidden) put_two_digits(at + place[which], value);
  }
  void put_fraction(char* at, const _windows_systemtime& fields) const;

  // The text with gaps for its parts, of which each has a place unless it isn't shown.
  std::string form;
  size_t date_end = 0;
  std::array<size_t, parts> place = {};
  bool month_name = false;
  size_t fraction_digits = 0;  // 0 for none, else at least 3
  uint32_t fraction_unit = 1;  // nanoseconds in the last of them
};

inline char* masked_format::put(char* at, const _windows_systemtime& fields) const {
  std::memcpy(at, form.data(), form.size());
  const uint32_t hundreds = fields.year / 100U;
  put_digits(at, century, hundreds);
  put_digits(at, year, fields.year - 100 * hundreds);
  if (month_name) {
    std::memcpy(at + place[month], month_abbreviation(fields.month).data(), 3);
  } else {
    put_digits(at, month, fields.month);
  }
  put_digits(at, day, fields.day);
  put_digits(at, hour, fields.hour);
  put_digits(at, minute, fields.minute);
  put_digits(at, second, fields.second);
  if (fraction_digits != 0) put_fraction(at + place[fraction], fields);
  return at + form.size();
}

inline void masked_format::put_fraction(char* at, const _windows_systemtime& fields) const {
  auto rest = static_cast<uint32_t>(fields.nanosecond) / fraction_unit;
  for (size_t i = fraction_digits; i-- > 0; rest /= 10) at[i] = static_cast<char>('0' + rest % 10);
}

// Writes both texts by the masks. The result is the `valid` flag of `t`.
bool format_masked(std::string& date_out, std::string& time_out, const time& t,
                   const std::string& date_mask, const std::string& time_mask);

// The first usable one of: the environment's locale, with an empty `name`; the one that LC_TIME
// names; the one that LANG names. `found` is that locale, so that it isn't loaded again. False,
// with an empty `name`, if there is none. Throws std::bad_alloc where a locale lacked memory.
bool find_user_locale(std::string& name, std::optional<std::locale>& found);

// Dates as the user's locale writes them. It is looked up once, at construction.
class locale_dates {
 public:
  locale_dates();

  // The locale's name, empty if none could be used.
  std::string locale_name() const;

  // The date, or nothing if no locale could be used.
  std::optional<std::string> date(const _windows_systemtime& fields) const;

 private:
  std::optional<std::locale> user_locale;
};

// Writes both texts without masks. The date is by `dates` where that is given and has a locale,
// else the numeric year-first form, with `short_year` in two digits from 2000 (or from 1900 before
// it). The time has milliseconds with `with_fraction`, nanoseconds with both flags.
void format_default(std::string& date_out, std::string& time_out, const time& t, bool with_fraction,
                    bool short_year, const locale_dates* dates, bool nanoseconds);

}  // namespace zk
