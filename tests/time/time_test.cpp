// Time values: limits, DOS pairs, local time, stamps, and what options give.
#include <gtest/gtest.h>

#include <cstdlib>

#include "time/time_parse.h"
#include "tools/index_builder.h"

namespace {

using sample::dos_of;
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

// The offset from UTC is looked up once a second, so a new zone shows with the next one.
void use_zone(const char* zone) {
  const std::time_t before = std::time(nullptr);
  while (std::time(nullptr) == before) {
  }
  setenv("TZ", zone, 1);
  tzset();
}

// clang-format off

TEST(Filetime, CalendarFields) {
  for (int64_t day = 0; day < 511000; day += 13) {  // 1601 to 3000, against the C library
    const std::time_t seconds = (day - 134774) * 86400 + 12345;
    char expected[64];
    std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S w%w", std::gmtime(&seconds));
    zk::_windows_systemtime fields;
    zk::filetime_to_systemtime(epoch + static_cast<uint64_t>(seconds) * second, fields);
    ASSERT_EQ(shown(fields), expected);
  }
  EXPECT_EQ(shown(loaded(epoch + 951868799 * second).fields), "2000-02-29 23:59:59 w2");
  EXPECT_EQ(shown(loaded(epoch + 978307199 * second).fields), "2000-12-31 23:59:59 w0");
  const zk::time t = loaded(epoch + 5 * second + 9999999);  // each unit states the whole fraction
  EXPECT_EQ(t.fields.millisecond, 999);
  EXPECT_EQ(t.fields.microsecond, 999999u);
  EXPECT_EQ(t.fields.nanosecond, 999999900u);
  EXPECT_EQ(t.fields.picosecond, 999999900000u);
  EXPECT_EQ(t.filetime_copy, t.filetime);
}

TEST(Filetime, WhatIsValid) {
  const uint64_t year_1900 = filetime_of(1900, 1, 1), year_3001 = filetime_of(3001, 1, 1);
  struct valid_case { uint64_t filetime; bool valid, local; };
  const auto check = [](const std::vector<valid_case>& cases) {
    for (const auto& c : cases) {
      const zk::time t = loaded(c.filetime);
      std::tm local = {};
      EXPECT_EQ(t.valid, c.valid) << c.filetime;
      EXPECT_EQ(t.filetime, c.filetime);
      if (c.valid) {
        EXPECT_EQ(t.local_tm(local), c.local) << c.filetime;
      }
    }
  };
  use_zone("UTC");
  check({{0, false, false}, {1, false, false}, {year_1900 - 1, false, false}, {year_1900, true, false},
         {epoch - 1, true, false}, {epoch, false, false}, {epoch + second - 1, false, false},
         {epoch + second, true, true}, {year_3001 - 1, true, true}, {year_3001, false, false},
         {0x7FFFFFFFFFFFFFFF, false, false}, {0x8000000000000000, false, false}});
  EXPECT_EQ(loaded(1).fields.year, 1601);
  EXPECT_EQ(loaded(1ULL << 63).fields.year, 0);
  uint64_t seconds = 0;
  EXPECT_TRUE(zk::filetime_to_unix(epoch - second, seconds));
  EXPECT_GT(seconds, 1000000000000u);  // wrapped, not negative

  use_zone("WEST5WST4,0/0,J365/25");  // daylight time all year doesn't count
  EXPECT_EQ(zk::local_offset_seconds(), -18000);
  check({{year_3001, true, true}, {year_3001 + 18000 * second, false, false}});
  use_zone("EAST-5:30");
  check({{year_3001 - second, true, false}, {epoch + 1 * second, true, true}});
  std::tm local = {};
  EXPECT_TRUE(loaded(filetime_of(2008, 2, 29, 20, 0, 1)).local_tm(local));
  EXPECT_EQ(local.tm_mon * 10000 + local.tm_mday * 100 + local.tm_min, 20130);
  EXPECT_EQ(local.tm_wday * 1000 + local.tm_yday, 6060);
  EXPECT_FALSE(zk::unix_to_local_tm(-1, local));
  EXPECT_EQ(local.tm_mday, 0);
  std::tm noon = {};
  noon.tm_year = 100, noon.tm_mday = 2, noon.tm_hour = 12;
  zk::time t;
  EXPECT_TRUE(t.set_tm(noon, 7, false));  // local time that is stored as UTC
  EXPECT_EQ(t.filetime, filetime_of(2000, 1, 2, 12) + 70000);
  use_zone("UTC");
}

TEST(Time, UnixSecondsAndNow) {
  EXPECT_EQ(shown(loaded(86400, zk::type_time::unix_time).fields), "1970-01-02 00:00:00 w5");
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
  struct dos_case { uint32_t pair; std::string expected; };  // empty for an invalid time
  for (const auto& [pair, expected] : std::vector<dos_case>{
           {dos_of(2000, 2, 29), "2000-02-29 00:00:00 w2"}, {dos_of(2000, 3, 1), "2000-02-29 00:00:00 w2"},
           {dos_of(2000, 12, 31), "2000-12-30 00:00:00 w6"}, {dos_of(2001, 1, 1), "2001-01-01 00:00:00 w1"},
           {dos_of(2004, 3, 1, 23, 59, 58), "2004-03-01 23:59:58 w1"}, {0, ""},
           {dos_of(1999, 2, 31), "1999-03-03 00:00:00 w3"}, {dos_of(2107, 12, 31), "2107-12-31 00:00:00 w6"},
           {dos_of(2004, 3, 0), ""}, {dos_of(2004, 0, 1), ""}, {dos_of(2004, 13, 1), ""},
           {dos_of(2004, 3, 1, 24), ""}, {dos_of(2004, 3, 1, 0, 60), ""}, {dos_of(2004, 3, 1, 0, 0, 60), ""}}) {
    zk::time t;
    t.set_dos({static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)}, true);
    EXPECT_EQ(t.valid ? shown(t.fields) : "", expected) << pair;
    EXPECT_EQ(t.filetime == 0, expected.empty());
  }
  struct stamp_case { uint64_t filetime; int date, time; };
  for (const auto& c : std::vector<stamp_case>{
           {filetime_of(2037, 12, 31, 1, 2, 59), 0x739F, 1 << 11 | 2 << 5 | 30},
           {filetime_of(1980, 1, 1, 0, 0, 4), 0x21, 2}, {filetime_of(2038, 1, 1), 0, 0},
           {filetime_of(1979, 12, 31), 0, 0}}) {
    EXPECT_EQ(loaded(c.filetime).dos_stamp.date, c.date);
    EXPECT_EQ(loaded(c.filetime).dos_stamp.time, c.time);
  }
}

TEST(Time, FromTmAndFromFields) {
  struct tm_case { int month, year, month_after, year_after; const char* date; };
  for (const auto& c : std::vector<tm_case>{
           {12, 100, 0, 101, "2001-01-01"}, {-1, 100, 11, 99, "1999-12-01"}, {-12, 100, 0, 99, "1999-01-01"},
           {25, 0, 1, 2, "1902-02-01"}, {2, 0, 2, 0, "1900-03-01"}, {2, -4, 2, -4, "1896-02-29"},
           {2, 400, 2, 400, "2300-03-02"}, {INT32_MIN, 0, 4, -178956971, ""}}) {
    std::tm tm = {};
    tm.tm_mon = c.month, tm.tm_year = c.year, tm.tm_mday = 1;
    zk::_windows_systemtime fields;
    zk::filetime_to_systemtime(zk::tm_to_filetime(tm, 0), fields);
    EXPECT_EQ(tm.tm_mon, c.month_after);
    EXPECT_EQ(tm.tm_year, c.year_after);
    EXPECT_TRUE(shown(fields).starts_with(c.date)) << shown(fields);
  }
  const uint64_t given = filetime_of(2004, 5, 6, 7, 8, 9) + 123 * 10000;
  uint64_t back = 0;
  zk::systemtime_to_filetime(loaded(given).fields, back);
  EXPECT_EQ(back, given);
}

TEST(NtpStamp, LayoutAndDifference) {
  const auto stamp = [](uint64_t ticks) { return zk::filetime_to_ntp64(zk::ntp_epoch_filetime + ticks); };
  EXPECT_EQ(zk::filetime_to_ntp64(1ULL << 63), 0u);
  EXPECT_EQ(stamp(0x01020304 * second), 0x04030201u);
  EXPECT_EQ(stamp(second / 3) >> 32, 0xC0545555u);
  EXPECT_EQ(stamp(second / 64) >> 32, 0x40u);  // below a sixteenth the leading zero digits are lost
  EXPECT_DOUBLE_EQ(zk::ntp64_diff_seconds(stamp(second / 2), stamp(second * 77)), 76.5);
  EXPECT_LE(zk::ntp64_diff_seconds(zk::ntp64_now(), zk::ntp64_now()), 1);
}

TEST(ParseDate, OrdersAndYears) {
  struct date_case { const char *date, *order; char separator; const char* expected; };  // empty: refused
  for (const auto& c : std::vector<date_case>{
           {"2020-1-5", "YMD", '-', "2020-01-05"}, {"20-1-5", "YMD", '-', "2020-01-05"},
           {"30-1-5", "YMD", '-', "2030-01-05"}, {"31-1-5", "YMD", '-', "1931-01-05"},
           {"99-1-5", "YMD", '-', "1999-01-05"}, {"100-1-5", "YMD", '-', "0100-01-05"},
           {"2020-12-31", "YMD", '-', "2020-12-31"}, {"2020-13-5", "YMD", '-', ""},
           {"2020-1-32", "YMD", '-', ""}, {"2020-0-0", "YMD", '-', "2020-00-00"},
           {"2020---1-----5", "YMD", '-', "2020-01-05"}, {"2020----1-5", "YMD", '-', ""},
           {"2020-1-", "YMD", '-', ""}, {"-2020-1-5", "YMD", '-', ""}, {"2020-a-5", "YMD", '-', ""},
           {"5/FEB/2020", "DMonY", '/', "2020-02-05"}, {"5/Foo/2020", "DMonY", '/', ""},
           {"1/2/2020", "mdy", '/', "2020-01-02"}, {"1/2/2020", "MD", '/', ""},
           {"1/2/2020", "MDX", '/', ""}, {"2020-1-31:5", "YMD", '-', "2020-01-31"}, {"", "YMD", '-', ""}}) {
    zk::_windows_systemtime f = {};
    const bool read = zk::parse_date_time(c.date, nullptr, c.order, c.separator, f);
    EXPECT_EQ(read ? shown(f).substr(0, 10) : "", c.expected) << c.date;
  }
}

TEST(ParseTime, FieldsAndMeridian) {
  struct time_case { std::string time; bool read; int hour, minute, second, millisecond; };
  for (const auto& c : std::vector<time_case>{
           {" 1:02:03.5 ", true, 1, 2, 3, 500}, {"1:2", true, 1, 2, 0, 0}, {"12:30 pm", true, 24, 30, 0, 0},
           {"12:30AM", true, 12, 30, 0, 0}, {"1:02:03 pm", true, 13, 2, 3, 0}, {"1:", false, 0, 0, 0, 0},
           {"0:00:59.9999", true, 0, 0, 59, 1000}, {"99:99:99", true, 99, 99, 99, 0},
           {"1:m", false, 0, 0, 0, 0}, {"1: pm", false, 0, 0, 0, 0}, {"12", false, 0, 0, 0, 0},
           {"1::5", false, 0, 0, 0, 0}, {":5", true, 0, 5, 0, 0}, {"1:2pm:3", true, 13, 2, 3, 0},
           {"1e300:5", true, 0, 5, 0, 0}, {"2147483647:30 pm", true, 0, 30, 0, 0},
           {"1:" + std::string(32, '2'), false, 0, 0, 0, 0}, {"1:" + std::string(31, '0'), true, 1, 0, 0, 0}}) {
    zk::_windows_systemtime f = {};
    EXPECT_EQ(zk::parse_date_time("2020-1-5", c.time.c_str(), "YMD", '-', f), c.read) << c.time;
    EXPECT_EQ(f.hour * 1000000 + f.minute * 1000 + f.second, c.hour * 1000000 + c.minute * 1000 + c.second) << c.time;
    EXPECT_EQ(f.millisecond, c.millisecond) << c.time;
  }
}

}  // namespace
