// One instant, and every form that the program needs of it.
//
// FILETIME is an unsigned 64-bit count of 100-nanosecond ticks since 1601-01-01 00:00:00 UTC. All
// other forms are derived from it, local time on demand and the rest at once. Nothing here prints
// or throws: a value that can't be shown leaves `valid` false, and a refused conversion is a false
// or 0 result.
#pragma once

#include <cstdint>
#include <ctime>

namespace zk {

inline constexpr uint64_t ticks_per_second = 10000000;
inline constexpr uint64_t unix_epoch_filetime = 116444736000000000;  // 1970-01-01
inline constexpr uint64_t ntp_epoch_filetime = 94354848000000000;    // 1900-01-01

// How a 64-bit value encodes an instant. Bit values; the rest are reserved.
enum class type_time : uint32_t {
  filetime = 1,
  unix_time = 8,  // seconds since 1970
};

// The calendar fields of one instant, in UTC. The first eight have the order and width of the
// SYSTEMTIME record. The last three each state the whole fraction of the second in their unit;
// they aren't remainders of one another.
struct _windows_systemtime {
  uint16_t year;
  uint16_t month;        // 1 to 12
  uint16_t day_of_week;  // 0 is Sunday
  uint16_t day;          // 1 to 31
  uint16_t hour;
  uint16_t minute;
  uint16_t second;
  uint16_t millisecond;
  uint64_t microsecond;
  uint64_t nanosecond;
  uint64_t picosecond;
};

// The same instant as the C library has it; the day of the week and of the year stay 0.
std::tm calendar_tm(const _windows_systemtime& fields);

// Two DOS words. Date: years since 1980 in bits 15 to 9, month in 8 to 5, day in 4 to 0. Time:
// hour in 15 to 11, minute in 10 to 5, seconds halved in 4 to 0.
struct dos_pair {
  uint16_t date;
  uint16_t time;
};

// Local time by today's offset. False, with all fields zero, for negative seconds and from the
// local year 3001 on.
bool unix_to_local_tm(int64_t seconds, std::tm& fields);

class time {
 public:
  uint64_t unix_seconds = 0;  // not to be used before 1970
  uint64_t filetime = 0;
  uint64_t filetime_copy = 0;  // stored
  dos_pair dos_stamp = {};     // zero outside 1980 to 2037
  _windows_systemtime fields = {};
  bool valid = false;  // the object may be shown; nothing else may be read unless it is

  // A valid instant in local time, by today's offset from UTC whatever its date. False, with
  // zeros, where it can't be had: before 1970 and from the local year 3001 on.
  bool local_tm(std::tm& local) const {
    return unix_to_local_tm(static_cast<int64_t>(unix_seconds), local);
  }

  void clear() { *this = time(); }

  // Each of these clears the object and loads one value. A value that can't be shown leaves it
  // invalid, and then it keeps whatever was derived so far.
  void set_value(uint64_t value, type_time type);
  void set_now();
  // A day after the end of its month runs on into the next.
  // Deliberate: March to December 2000 come out one day early, see tm_to_filetime.
  void set_dos(dos_pair pair, bool is_utc);
  // Returns `valid`. With `is_utc` false the fields are local time, and must lie after 1970.
  bool set_tm(std::tm fields, int milliseconds, bool is_utc);

  // Sets the FILETIME and all other forms. Returns `valid`, which is true for the years 1900 to
  // 3000 but for the first second of 1970, and as far into 3001 as it is still 3000 by local time.
  bool derive_from_filetime(uint64_t ft);
};

// Whole seconds since 1970. False, with `seconds` unchanged, if the top bit of `ft` is set. A time
// before 1970 gives a very large number, not a negative one.
bool filetime_to_unix(uint64_t ft, uint64_t& seconds);

// The calendar fields; all zero, and false, if the top bit of `ft` is set. Good to the year 3100.
bool filetime_to_systemtime(uint64_t ft, _windows_systemtime& fields);

// The DOS pair, its seconds rounded up to even without a carry. False, with `pair` unchanged,
// outside 1980 to 2037.
bool filetime_to_dos(uint64_t ft, dos_pair& pair);

// The FILETIME of UTC fields. Moves whole years from `tm_mon` to `tm_year`, so that the month lies
// in 0 to 11.
// Deliberate: 2000 isn't taken for a leap year, so its dates from March on come out a day early.
uint64_t tm_to_filetime(std::tm& fields, int milliseconds);

// The FILETIME of calendar fields, down to the millisecond, by the rule of tm_to_filetime.
void systemtime_to_filetime(const _windows_systemtime& fields, uint64_t& ft);

// Local time minus UTC at this moment, in seconds. Looked up once in each second.
int local_offset_seconds();

// An NTP stamp: eight bytes in memory, seconds since 1900 and then their fraction, both
// big-endian. 0 if the top bit of `ft` is set.
uint64_t filetime_to_ntp64(uint64_t ft);
uint64_t ntp64_now();  // whole seconds only
double ntp64_diff_seconds(uint64_t a, uint64_t b);

}  // namespace zk
