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

// The longest texts that masks give, in bytes.
inline constexpr size_t longest_date = 12;  // "mmm", "dd,", "yyyy" and two separators
inline constexpr size_t longest_time = 18;  // "hh:mm", ":ss", "." and nine digits

// "Jan" to "Dec" for 1 to 12, else empty. English at all times.
std::string_view month_abbreviation(int month);

// "00" to "99", one behind the other.
constexpr std::array<char, 200> make_two_digits() {
  std::array<char, 200> digits = {};
  for (size_t i = 0; i < digits.size(); ++i) {
    digits[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  }
  return digits;
}
inline constexpr auto two_digits = make_two_digits();

// Writes two digits of a value below 100.
inline char* put_two_digits(char* at, uint32_t value) {
  std::memcpy(at, &two_digits[size_t{2} * value], 2);
  return at + 2;
}

// A date mask and a time mask, read once and then applied to any number of times.
//
// A date mask holds "yyyy" or "yy", "mmm" (English abbreviation) or "mm", "dd", and one of "/",
// "-" and " " as separator, "/" if it has none. It tells which of day and month comes first, and
// whether the year leads; without all three parts the date is month/day/year. With the separator
// " ", a "," at or behind "dd" puts a comma behind the day. A time mask holds "hh:mm", "ss" and
// "xxx", a fraction with as many digits as lie from its first "x" to the mask's last. All else in
// a mask is ignored.
class masked_format {
 public:
  masked_format(const std::string& date_mask, const std::string& time_mask);

  // Write the date or the time of day of a valid time at `at`, where the longest must fit, and
  // return the place behind it. An empty mask writes nothing.
  char* put_date(char* at, const _windows_systemtime& fields) const;
  char* put_time(char* at, const _windows_systemtime& fields) const;

 private:
  void lay_out_date(char separator, bool year_first, bool day_first, bool comma);
  char* put_beyond_milliseconds(char* at, uint64_t nanosecond) const;

  // Date: its text without the digits, and the places of its parts.
  std::array<char, longest_date> date_form = {};
  size_t date_size = 0;
  size_t century_at = 0;
  size_t year_at = 0;  // its last two digits
  size_t month_at = 0;
  size_t day_at = 0;
  bool month_name = false;
  bool two_digit_year = false;
  // Time.
  bool hour_minute = false;
  bool second = false;
  size_t fraction_digits = 0;  // 0 for none
  uint32_t fraction_unit = 1;  // nanoseconds in the last of them
};

inline char* masked_format::put_date(char* at, const _windows_systemtime& fields) const {
  if (date_size == 0) return at;
  std::memcpy(at, date_form.data(), date_form.size());
  const uint32_t century = fields.year / 100U;
  put_two_digits(at + century_at, century);  // where the year has two digits, they overwrite these
  put_two_digits(at + year_at, fields.year - 100 * century);
  if (month_name) {
    std::memcpy(at + month_at, month_abbreviation(fields.month).data(), 3);
  } else {
    put_two_digits(at + month_at, fields.month);
  }
  put_two_digits(at + day_at, fields.day);
  return at + date_size;
}

inline char* masked_format::put_time(char* at, const _windows_systemtime& fields) const {
  if (hour_minute) {
    at = put_two_digits(at, fields.hour);
    *at++ = ':';
    at = put_two_digits(at, fields.minute);
  }
  if (second) {
    *at++ = ':';
    at = put_two_digits(at, fields.second);
  }
  if (fraction_digits != 0) {
    *at++ = '.';
    const uint32_t tenths = fields.millisecond / 100U;
    *at++ = static_cast<char>('0' + tenths);
    at = put_two_digits(at, fields.millisecond - 100 * tenths);
    if (fraction_digits > 3) at = put_beyond_milliseconds(at, fields.nanosecond);
  }
  return at;
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
