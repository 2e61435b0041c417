// The calendar fields of the times that rows show. Inline, since every row has four of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <ctime>

#include "time/zk_time.h"

namespace zk {

inline constexpr uint32_t day_seconds = 86400;

constexpr bool is_leap(auto year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr auto leap_days_through(auto year) {
  return year / 4 - year / 100 + year / 400;
}

// The last zero-based day of the year in each month, after a leading -1.
inline constexpr int last_day_common[] = {-1,  30,  58,  89,  119, 150, 180,
                                          211, 242, 272, 303, 333, 364};
inline constexpr int last_day_leap[] = {-1,  30,  59,  90,  120, 151, 181,
                                        212, 243, 273, 304, 334, 365};

// A date as its year, its month from 1, and its day of the year and of the month.
struct calendar_date {
  int32_t year;
  int32_t month;
  int32_t day_of_year;  // from 0
  int32_t day;
};

// The date so many days after 1601-01-01. Good to the year 3100.
// Branchless: of dates at random, mispredicted branches take 10 ns each, a tenth of a row's time.
constexpr calendar_date date_of(uint32_t days) {
  // Count 365-day years, then take back the leap days that went by.
  const uint32_t years = days / 365;
  const auto ahead = static_cast<int32_t>(days % 365 - leap_days_through(years));
  const int32_t borrowed = ahead < 0;  // a year, where they lead into the one before
  const int32_t year = 1601 + static_cast<int32_t>(years) - borrowed;
  const bool leap = is_leap(static_cast<uint32_t>(year));
  const int32_t rest = ahead + borrowed * (365 + leap);
  const auto& last_day = leap ? last_day_leap : last_day_common;
  int32_t month = std::max(rest, 0) / 32 + 1;  // the month, or the one before it
  month += last_day[month] < rest;
  return {year, month, rest, rest - last_day[month - 1]};
}

// Sets those fields that masks print: all but the day of the week, the microseconds and the
// picoseconds.
inline void set_fields(_windows_systemtime& fields, uint64_t ft) {
  const uint64_t seconds = ft / ticks_per_second;
  const auto ticks = static_cast<uint32_t>(ft % ticks_per_second);
  const calendar_date date = date_of(static_cast<uint32_t>(seconds / day_seconds));
  const auto of_day = static_cast<uint32_t>(seconds % day_seconds);
  fields.year = static_cast<uint16_t>(date.year);
  fields.month = static_cast<uint16_t>(date.month);
  fields.day = static_cast<uint16_t>(date.day);
  fields.hour = static_cast<uint16_t>(of_day / 3600);
  fields.minute = static_cast<uint16_t>(of_day / 60 % 60);
  fields.second = static_cast<uint16_t>(of_day % 60);
  fields.millisecond = static_cast<uint16_t>(ticks / 10000);
  fields.nanosecond = ticks * 100ULL;
}

// The same for a DOS pair, as stored: 31 February passes. False if a part is out of its range.
inline bool set_fields(_windows_systemtime& fields, dos_pair pair) {
  fields.year = static_cast<uint16_t>((pair.date >> 9) + 1980);
  fields.month = pair.date >> 5 & 15;
  fields.day = pair.date & 31;
  fields.hour = pair.time >> 11;
  fields.minute = pair.time >> 5 & 63;
  fields.second = static_cast<uint16_t>((pair.time & 31) * 2);
  fields.millisecond = 0;
  fields.nanosecond = 0;
  if (fields.day == 0 || fields.month == 0 || fields.month > 12) return false;
  return fields.second <= 59 && fields.minute <= 59 && fields.hour <= 23;
}

// Whether this time can be shown.
inline bool is_shown(uint64_t ft) {
  constexpr uint64_t year_1900 = ntp_epoch_filetime;
  constexpr uint64_t year_3001 = 441796896000000000;
  const uint64_t since_1970 = ft - unix_epoch_filetime;  // very large for earlier times
  if (since_1970 < ticks_per_second) return false;
  if (ft - year_1900 < year_3001 - year_1900) return true;
  // Rejected, unless local time is still in 3000.
  std::tm local;
  return unix_to_local_tm(static_cast<int64_t>(since_1970 / ticks_per_second), local);
}

// The date that a DOS pair means: a day after the end of its month runs on into the next. The year
// stays.
// Deliberate: March to December 2000 come out one day early, see tm_to_filetime.
calendar_date normalized_dos_date(calendar_date date);

// The fields that masks print. False, and then they must not be read, where a `time` with the same
// value isn't valid.
inline bool shown_fields(uint64_t ft, _windows_systemtime& fields) {
  if (!is_shown(ft)) return false;
  set_fields(fields, ft);
  return true;
}
inline bool shown_fields(dos_pair pair, _windows_systemtime& fields) {
  if (!set_fields(fields, pair)) return false;
  if (fields.day > 28 || fields.year == 2000) {
    const calendar_date date = normalized_dos_date({fields.year, fields.month, 0, fields.day});
    fields.month = static_cast<uint16_t>(date.month);
    fields.day = static_cast<uint16_t>(date.day);
  }
  return true;
}

}  // namespace zk
