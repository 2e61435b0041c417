// Time values: limits, DOS pairs, local time, stamps.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "time/time_parse.h"
#include "time/zk_time.h"
#include "tools/index_builder.h"

namespace {

using sample::filetime_of;

constexpr uint64_t epoch = zk::unix_epoch_filetime;
constexpr uint64_t second = zk::ticks_per_second;

std::string shown(const zk::_windows_systemtime& f) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d w%d", f.year, f.month, f.day,
                f.hour, f.minute, f.second, f.day_of_week);
  return text;
}

zk::time loaded(uint64_t value, zk::type_time type = zk::type_time::filetime) {
  zk::time t;
  t.set_value(value, type);
  return t;
}

TEST(Filetime, CalendarFields) {
  const struct {
    uint64_t filetime;
    const char* expected;
  } cases[] = {
      {1, "1601-01-01 00:00:00 w1"},
      {epoch, "1970-01-01 00:00:00 w4"},
      {epoch + 951782400 * second, "2000-02-29 00:00:00 w2"},
      {epoch + 951868799 * second, "2000-02-29 23:59:59 w2"},
      {epoch + 951868800 * second, "2000-03-01 00:00:00 w3"},
      {epoch + 978307199 * second, "2000-12-31 23:59:59 w0"},
      {epoch + 4107542400 * second, "2100-03-01 00:00:00 w1"},
      {epoch + 32503679999 * second, "2999-12-31 23:59:59 w2"},
      {epoch - 70ULL * 365 * 86400 * second, "1900-01-18 00:00:00 w4"},
  };
  for (const auto& [filetime, expected] : cases) {
    zk::_windows_systemtime fields;
    EXPECT_TRUE(zk::filetime_to_systemtime(filetime, fields));
    EXPECT_EQ(shown(fields), expected);
  }
  // Every day from 1601 to 3000, against the C library.
  for (int64_t day = 0; day < 511000; day += 13) {
    const std::time_t seconds = (day - 134774) * 86400 + 12345;
    std::tm expected;
    gmtime_r(&seconds, &expected);
    zk::_windows_systemtime fields;
    zk::filetime_to_systemtime(epoch + static_cast<uint64_t>(seconds) * second, fields);
    ASSERT_EQ(fields.year - 1900, expected.tm_year);
    ASSERT_EQ(fields.month - 1, expected.tm_mon);
    ASSERT_EQ(fields.day, expected.tm_mday);
    ASSERT_EQ(fields.day_of_week, expected.tm_wday);
  }
}

TEST(Filetime, FractionsAreEachTheWholeAndCut) {
  const zk::time t = loaded(epoch + 5 * second + 9999999);
  EXPECT_EQ(t.fields.millisecond, 999);
  EXPECT_EQ(t.fields.microsecond, 999999u);
  EXPECT_EQ(t.fields.nanosecond, 999999900u);
  EXPECT_EQ(t.fields.picosecond, 999999900000u);
  EXPECT_EQ(t.unix_seconds, 5u);
  EXPECT_EQ(t.filetime_copy, t.filetime);
}

TEST(Filetime, WhatIsValid) {
  setenv("TZ", "UTC", 1);
  tzset();
  const uint64_t year_1900 = filetime_of(1900, 1, 1);
  const struct {
    uint64_t filetime;
    bool valid, no_local_tm;
  } cases[] = {
      {0, false, false},
      {1, false, true},
      {year_1900 - 1, false, true},
      {year_1900, true, true},
      {epoch - 1, true, true},
      {epoch, false, false},
      {epoch + second - 1, false, false},
      {epoch + second, true, false},
      {filetime_of(3001, 1, 1) - 1, true, false},
      {filetime_of(3001, 1, 1), false, true},
      {0x7FFFFFFFFFFFFFFF, false, true},
      {0x8000000000000000, false, false},
  };
  for (const auto& c : cases) {
    const zk::time t = loaded(c.filetime);
    EXPECT_EQ(t.valid, c.valid) << c.filetime;
    EXPECT_EQ(t.no_local_tm, c.no_local_tm) << c.filetime;
    EXPECT_EQ(t.filetime, c.filetime);
  }
  EXPECT_EQ(loaded(1).fields.year, 1601);
  EXPECT_EQ(loaded(1ULL << 63).fields.year, 0);
  uint64_t seconds = 0;
  EXPECT_TRUE(zk::filetime_to_unix(epoch - second, seconds));
  EXPECT_GT(seconds, 1000000000000u);  // wrapped, not negative
}

TEST(UnixTime, BelowOneIsInvalidButConverted) {
  const zk::time t = loaded(86400, zk::type_time::unix_time);
  EXPECT_TRUE(t.valid);
  EXPECT_EQ(shown(t.fields), "1970-01-02 00:00:00 w5");
  for (const uint64_t value : {uint64_t{0}, ~uint64_t{0}}) {
    const zk::time none = loaded(value, zk::type_time::unix_time);
    EXPECT_FALSE(none.valid);
    EXPECT_EQ(none.unix_seconds, 0u);
    EXPECT_EQ(none.filetime, epoch + value * second);
  }
  EXPECT_EQ(loaded(5, static_cast<zk::type_time>(4)).filetime, 0u);
  zk::time now;
  now.set_now();
  EXPECT_NEAR(static_cast<double>(now.unix_seconds), static_cast<double>(std::time(nullptr)), 2);
}

TEST(DosTime, BoundsAndTheYear2000) {
  const struct {
    uint32_t pair;
    const char* expected;  // null for invalid
  } cases[] = {
      {sample::dos_of(2000, 2, 29), "2000-02-29 00:00:00 w2"},
      {sample::dos_of(2000, 3, 1), "2000-02-29 00:00:00 w2"},
      {sample::dos_of(2000, 12, 31), "2000-12-30 00:00:00 w6"},
      {sample::dos_of(2001, 1, 1), "2001-01-01 00:00:00 w1"},
      {sample::dos_of(2004, 3, 1, 23, 59, 58), "2004-03-01 23:59:58 w1"},
      {sample::dos_of(1999, 2, 31), "1999-03-03 00:00:00 w3"},
      {sample::dos_of(1980, 1, 1), "1980-01-01 00:00:00 w2"},
      {sample::dos_of(2107, 12, 31), "2107-12-31 00:00:00 w6"},
      {0, nullptr},
      {sample::dos_of(2004, 3, 0), nullptr},
      {sample::dos_of(2004, 0, 1), nullptr},
      {sample::dos_of(2004, 13, 1), nullptr},
      {sample::dos_of(2004, 3, 1, 24), nullptr},
      {sample::dos_of(2004, 3, 1, 0, 60), nullptr},
      {sample::dos_of(2004, 3, 1, 0, 0, 60), nullptr},
  };
  for (const auto& [pair, expected] : cases) {
    zk::time t;
    t.set_dos({static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)}, true);
    EXPECT_EQ(t.valid, expected != nullptr) << pair;
    if (expected) {
      EXPECT_EQ(shown(t.fields), expected);
    } else {
      EXPECT_EQ(t.filetime, 0u) << pair;
    }
  }
  const struct {
    uint64_t filetime;
    uint16_t date, time;
  } back[] = {
      {filetime_of(2037, 12, 31, 1, 2, 59), 0x739F, 1 << 11 | 2 << 5 | 30},
      {filetime_of(1980, 1, 1, 0, 0, 4), 0x0021, 2},
      {filetime_of(2038, 1, 1), 0, 0},
      {filetime_of(1979, 12, 31), 0, 0},
  };
  for (const auto& c : back) {
    EXPECT_EQ(loaded(c.filetime).dos_stamp.date, c.date);
    EXPECT_EQ(loaded(c.filetime).dos_stamp.time, c.time);
  }
}

TEST(TmToFiletime, MovesWholeYears) {
  const struct {
    int month, year, month_after, year_after;
  } cases[] = {{12, 100, 0, 101}, {-1, 100, 11, 99}, {-12, 100, 0, 99}, {25, 0, 1, 2}};
  for (const auto& c : cases) {
    std::tm tm = {};
    tm.tm_mon = c.month;
    tm.tm_year = c.year;
    tm.tm_mday = 1;
    zk::tm_to_filetime(tm, 0);
    EXPECT_EQ(tm.tm_mon, c.month_after);
    EXPECT_EQ(tm.tm_year, c.year_after);
  }
  std::tm tm = {};
  tm.tm_year = 70;
  tm.tm_mday = 1;
  EXPECT_EQ(zk::tm_to_filetime(tm, 7), epoch + 70000);
  zk::time t;
  EXPECT_FALSE(t.set_tm(tm, 0, true));
  tm.tm_mday = 2;
  EXPECT_TRUE(t.set_tm(tm, 0, false));
}

// The offset from UTC is looked up once a second, so a new zone shows with the next one.
void use_zone(const char* zone) {
  const std::time_t before = std::time(nullptr);
  while (std::time(nullptr) == before) {
  }
  setenv("TZ", zone, 1);
  tzset();
}

TEST(LocalTime, MovesTheEndOfValidity) {
  const uint64_t year_3001 = filetime_of(3001, 1, 1);
  use_zone("WEST5");
  EXPECT_EQ(zk::local_offset_seconds(), -18000);
  const zk::time west = loaded(year_3001);
  EXPECT_TRUE(west.valid);
  EXPECT_EQ(west.local_tm.tm_mday, 31);
  EXPECT_EQ(west.local_tm.tm_hour, 19);
  EXPECT_EQ(west.local_tm.tm_yday, 364);
  EXPECT_FALSE(loaded(year_3001 + 18000 * second).valid);

  use_zone("EAST-5:30");
  const zk::time east = loaded(year_3001 - second);
  EXPECT_TRUE(east.valid);
  EXPECT_TRUE(east.no_local_tm);
  const zk::time noon = loaded(filetime_of(2008, 2, 29, 20, 0, 1));
  EXPECT_EQ(noon.local_tm.tm_mon, 2);
  EXPECT_EQ(noon.local_tm.tm_mday, 1);
  EXPECT_EQ(noon.local_tm.tm_min, 30);
  EXPECT_EQ(noon.local_tm.tm_wday, 6);
  std::tm none = {};
  none.tm_year = 1;
  EXPECT_FALSE(zk::unix_to_local_tm(-1, none));
  EXPECT_EQ(none.tm_year, 0);
  use_zone("UTC");
}

TEST(NtpStamp, LayoutAndDifference) {
  EXPECT_EQ(zk::filetime_to_ntp64(1ULL << 63), 0u);
  const uint64_t whole = zk::filetime_to_ntp64(zk::ntp_epoch_filetime + 0x01020304 * second);
  EXPECT_EQ(whole, 0x04030201u);
  const uint64_t half = zk::filetime_to_ntp64(zk::ntp_epoch_filetime + second / 2);
  EXPECT_EQ(half >> 32, 0x80u);
  // Below a sixteenth the leading zero digits are lost.
  const uint64_t small = zk::filetime_to_ntp64(zk::ntp_epoch_filetime + second / 64);
  EXPECT_EQ(small >> 32, 0x40u);
  EXPECT_DOUBLE_EQ(zk::ntp64_diff_seconds(half, whole), 0x01020304 - 0.5);
  EXPECT_LE(zk::ntp64_diff_seconds(zk::ntp64_now(), zk::ntp64_now()), 1);
}

TEST(ParseDate, OrdersAndYears) {
  const struct {
    const char* date;
    const char* order;
    char separator;
    const char* expected;  // null for a refusal
  } cases[] = {
      {"2020-1-5", "YMD", '-', "2020-01-05"},
      {"20-1-5", "YMD", '-', "2020-01-05"},
      {"30-1-5", "YMD", '-', "2030-01-05"},
      {"31-1-5", "YMD", '-', "1931-01-05"},
      {"99-1-5", "YMD", '-', "1999-01-05"},
      {"100-1-5", "YMD", '-', "0100-01-05"},
      {"2020-12-31", "YMD", '-', "2020-12-31"},
      {"2020-13-5", "YMD", '-', nullptr},
      {"2020-1-32", "YMD", '-', nullptr},
      {"2020-0-0", "YMD", '-', "2020-00-00"},
      {"2020---1-----5", "YMD", '-', "2020-01-05"},
      {"2020----1-5", "YMD", '-', nullptr},
      {"2020-1-", "YMD", '-', nullptr},
      {"-2020-1-5", "YMD", '-', nullptr},
      {"5/FEB/2020", "DMonY", '/', "2020-02-05"},
      {"5/Foo/2020", "DMonY", '/', nullptr},
      {"1/2/2020", "mdy", '/', "2020-01-02"},
      {"1/2/2020", "MD", '/', nullptr},
      {"1/2/2020", "MDX", '/', nullptr},
      {"2020-1-31:5", "YMD", '-', "2020-01-31"},
      {"", "YMD", '-', nullptr},
      {"2020-a-5", "YMD", '-', nullptr},
  };
  for (const auto& c : cases) {
    zk::_windows_systemtime f = {};
    const bool read = zk::parse_date_time(c.date, nullptr, c.order, c.separator, f);
    EXPECT_EQ(read, c.expected != nullptr) << c.date;
    if (read && c.expected) {
      EXPECT_EQ(shown(f).substr(0, 10), c.expected);
    }
  }
  zk::_windows_systemtime f = {};
  EXPECT_FALSE(zk::parse_date_time(nullptr, nullptr, "YMD", '-', f));
}

TEST(ParseTime, FieldsAndMeridian) {
  const struct {
    const char* time;
    bool read;
    int hour, minute, second, millisecond;
  } cases[] = {
      {" 1:02:03.5 ", true, 1, 2, 3, 500}, {"1:2", true, 1, 2, 0, 0},
      {"12:30 pm", true, 24, 30, 0, 0},    {"12:30AM", true, 12, 30, 0, 0},
      {"1:02:03 pm", true, 13, 2, 3, 0},   {"0:00:59.9999", true, 0, 0, 59, 1000},
      {"99:99:99", true, 99, 99, 99, 0},   {"1:", false, 0, 0, 0, 0},
      {"1:m", false, 0, 0, 0, 0},          {"12", false, 0, 0, 0, 0},
      {"1::5", false, 0, 0, 0, 0},         {":5", true, 0, 5, 0, 0},
      {"1:2pm:3", true, 13, 2, 3, 0},      {"1e300:5", true, 0, 5, 0, 0},
  };
  for (const auto& c : cases) {
    zk::_windows_systemtime f = {};
    EXPECT_EQ(zk::parse_date_time("2020-1-5", c.time, "YMD", '-', f), c.read) << c.time;
    EXPECT_EQ(f.hour, c.hour) << c.time;
    EXPECT_EQ(f.minute, c.minute) << c.time;
    EXPECT_EQ(f.second, c.second) << c.time;
    EXPECT_EQ(f.millisecond, c.millisecond) << c.time;
  }
  int hour = 0, minute = 0;
  double seconds = 0;
  EXPECT_FALSE(zk::parse_time_fields("1:" + std::string(32, '2'), hour, minute, seconds));
  EXPECT_TRUE(zk::parse_time_fields("1:" + std::string(31, '0'), hour, minute, seconds));
}

}  // namespace
