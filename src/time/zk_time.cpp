#include "time/zk_time.h"

#include <sys/time.h>

#include <cstdint>
#include <ctime>

#include "time/shown_fields.h"

namespace zk {
namespace {

constexpr int64_t days_1601_to_1970 = 134774;
constexpr int64_t first_refused_year = 3001;  // for local time

constexpr uint16_t cut16(int64_t value) {
  return static_cast<uint16_t>(value);
}

bool top_bit_set(uint64_t ft) {
  return ft >> 63 != 0;
}

uint64_t unix_to_filetime(uint64_t seconds) {
  return seconds * ticks_per_second + unix_epoch_filetime;
}

bool fields_to_dos(const _windows_systemtime& fields, dos_pair& pair) {
  const uint16_t years = cut16(fields.year - 1980);
  if (years > 57) return false;
  const int halved = (fields.second / 2 + fields.second % 2) & 31;
  pair.date = cut16(years << 9 | (fields.month & 15) << 5 | (fields.day & 31));
  pair.time = cut16(fields.hour << 11 | (fields.minute & 63) << 5 | halved);
  return true;
}

// The days from 1601-01-01 to a date, by the rule of tm_to_filetime.
int64_t days_to(const std::tm& fields) {
  const int64_t year = fields.tm_year;  // since 1900, and it is this that is tested for a leap year
  int64_t days = last_day_common[fields.tm_mon];
  if (year > 0 && is_leap(year) && fields.tm_mon > 1) ++days;
  return days + (year + 299) * 365 + leap_days_through(year + 1899) - 388 + fields.tm_mday;
}

int look_up_local_offset(std::time_t now) {
  // Both calls share one static result, so each is copied at once.
  std::tm local = *std::localtime(&now);
  std::tm utc = *std::gmtime(&now);
  return static_cast<int>(std::mktime(&local) - std::mktime(&utc));
}

}  // namespace

std::tm calendar_tm(const _windows_systemtime& fields) {
  std::tm tm = {};
  tm.tm_year = fields.year - 1900;
  tm.tm_mon = fields.month - 1;
  tm.tm_mday = fields.day;
  tm.tm_hour = fields.hour;
  tm.tm_min = fields.minute;
  tm.tm_sec = fields.second;
  return tm;
}

void time::set_value(uint64_t value, type_time type) {
  clear();
  if (type == type_time::filetime) {
    derive_from_filetime(value);
  } else if (type == type_time::unix_time) {
    filetime = unix_to_filetime(value);
    if (static_cast<int64_t>(value) < 1) return;
    unix_seconds = value;
    filetime_copy = filetime;
    derive_from_filetime(filetime);
  }
}

void time::set_now() {
  clear();
  timeval now = {};
  gettimeofday(&now, nullptr);
  derive_from_filetime(unix_to_filetime(static_cast<uint64_t>(now.tv_sec)) +
                       static_cast<uint64_t>(now.tv_usec) * 10);
}

void time::set_dos(dos_pair pair, bool is_utc) {
  clear();
  _windows_systemtime as_it_stands;
  if (set_fields(as_it_stands, pair)) set_tm(calendar_tm(as_it_stands), 0, is_utc);
}

bool time::set_tm(std::tm tm, int milliseconds, bool is_utc) {
  clear();
  if (is_utc) {
    filetime = tm_to_filetime(tm, milliseconds);
  } else {
    const std::time_t seconds = std::mktime(&tm);
    if (seconds <= 0) return false;
    filetime = unix_to_filetime(static_cast<uint64_t>(seconds + local_offset_seconds())) +
               static_cast<uint64_t>(static_cast<int64_t>(milliseconds) * 10000);
  }
  if (filetime != 0) filetime_copy = filetime;
  return derive_from_filetime(filetime);
}

bool time::derive_from_filetime(uint64_t ft) {
  valid = false;
  if (ft == 0) return false;
  filetime = ft;
  if (!filetime_to_unix(ft, unix_seconds) || unix_seconds == 0) return false;
  filetime_to_systemtime(ft, fields);
  filetime_copy = ft;
  fields_to_dos(fields, dos_stamp);
  valid = is_shown(ft);
  return valid;
}

bool filetime_to_unix(uint64_t ft, uint64_t& seconds) {
  if (top_bit_set(ft)) return false;
  seconds = (ft - unix_epoch_filetime) / ticks_per_second;
  return true;
}

bool filetime_to_systemtime(uint64_t ft, _windows_systemtime& fields) {
  fields = {};
  if (top_bit_set(ft)) return false;
  set_fields(fields, ft);
  fields.day_of_week = cut16(static_cast<int64_t>(ft / ticks_per_second / day_seconds + 1) % 7);
  fields.microsecond = fields.nanosecond / 1000;
  fields.picosecond = fields.nanosecond * 1000;
  return true;
}

calendar_date normalized_dos_date(calendar_date date) {
  std::tm tm = {};
  tm.tm_year = date.year - 1900;
  tm.tm_mon = date.month - 1;
  tm.tm_mday = date.day;
  return date_of(static_cast<uint32_t>(days_to(tm)));
}

bool filetime_to_dos(uint64_t ft, dos_pair& pair) {
  _windows_systemtime fields;
  filetime_to_systemtime(ft, fields);
  return fields_to_dos(fields, pair);
}

uint64_t tm_to_filetime(std::tm& fields, int milliseconds) {
  if (fields.tm_mon < 0 || fields.tm_mon > 11) {
    const int month = (fields.tm_mon % 12 + 12) % 12;
    const int64_t whole_years = (int64_t{fields.tm_mon} - month) / 12;
    fields.tm_year = static_cast<int>(fields.tm_year + whole_years);
    fields.tm_mon = month;
  }
  // Hostile fields wrap here as unsigned numbers do.
  auto ticks = static_cast<uint64_t>(days_to(fields));
  ticks = ticks * 24 + static_cast<uint64_t>(fields.tm_hour);
  ticks = ticks * 60 + static_cast<uint64_t>(fields.tm_min);
  ticks = ticks * 60 + static_cast<uint64_t>(fields.tm_sec);
  return ticks * ticks_per_second + static_cast<uint64_t>(milliseconds) * 10000;
}

void systemtime_to_filetime(const _windows_systemtime& fields, uint64_t& ft) {
  std::tm tm = calendar_tm(fields);
  ft = tm_to_filetime(tm, fields.millisecond);
}

bool unix_to_local_tm(int64_t seconds, std::tm& fields) {
  // Far enough from the first refused year for any zone.
  constexpr int64_t certainly_refused = (first_refused_year + 1 - 1970) * 366 * day_seconds;
  fields = {};
  if (seconds < 0 || seconds >= certainly_refused) return false;
  // Deliberate: the offset passes through hours of single precision.
  const float hours = static_cast<float>(local_offset_seconds()) / 3600.0F;
  const int64_t since_1601 = seconds + static_cast<int64_t>(static_cast<double>(hours) * 3600.0) +
                             days_1601_to_1970 * day_seconds;
  const auto days = static_cast<uint32_t>(since_1601 / day_seconds);
  const auto of_day = static_cast<int32_t>(since_1601 % day_seconds);
  const calendar_date date = date_of(days);
  if (date.year >= first_refused_year) return false;
  fields.tm_sec = of_day % 60;
  fields.tm_min = of_day / 60 % 60;
  fields.tm_hour = of_day / 3600;
  fields.tm_wday = static_cast<int>((days + 1) % 7);
  fields.tm_year = date.year - 1900;
  fields.tm_yday = date.day_of_year;
  fields.tm_mon = date.month - 1;
  fields.tm_mday = date.day;
  return true;
}

int local_offset_seconds() {
  static std::time_t looked_up_at = -1;
  static int offset = 0;
  const std::time_t now = std::time(nullptr);
  if (now != looked_up_at) {
    offset = look_up_local_offset(now);
    looked_up_at = now;
  }
  return offset;
}

uint64_t filetime_to_ntp64(uint64_t ft) {
  if (top_bit_set(ft)) return 0;
  const uint64_t ticks = ft - ntp_epoch_filetime;
  const auto seconds = static_cast<uint32_t>(ticks / ticks_per_second);
  const uint64_t scaled = (ticks % ticks_per_second) << 28;
  auto fraction = static_cast<uint32_t>(scaled / ticks_per_second);
  // Deliberate: not a true binary fraction, as its leading zero digits are shifted out.
  while (fraction != 0 && fraction >> 28 == 0) fraction <<= 4;
  return static_cast<uint64_t>(__builtin_bswap32(fraction)) << 32 | __builtin_bswap32(seconds);
}

uint64_t ntp64_now() {
  timeval now = {};
  gettimeofday(&now, nullptr);
  time t;
  t.set_value(static_cast<uint64_t>(now.tv_sec), type_time::unix_time);
  return filetime_to_ntp64(t.filetime);
}

double ntp64_diff_seconds(uint64_t a, uint64_t b) {
  const auto seconds = [](uint64_t stamp) {
    const uint32_t whole = __builtin_bswap32(static_cast<uint32_t>(stamp));
    const uint32_t fraction = __builtin_bswap32(static_cast<uint32_t>(stamp >> 32));
    return whole + fraction * 0x1p-32;
  };
  const double difference = seconds(a) - seconds(b);
  return difference < 0 ? -difference : difference;
}

}  // namespace zk
