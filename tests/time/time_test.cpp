// Time values: limits, DOS pairs, local time, stamps, and what options give.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/case_file.h"
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

// What `made` gives for a moment, all its parts after the year being optional.
template <class Made>
auto moment(const std::string& text, Made made) {
  int p[6] = {};
  std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", p, p + 1, p + 2, p + 3, p + 4, p + 5);
  return made(p[0], p[1], p[2], p[3], p[4], p[5]);
}

// The offset from UTC is looked up once a second, so a new zone shows with the next one.
void use_zone(const char* zone) {
  const std::time_t before = std::time(nullptr);
  while (std::time(nullptr) == before) {
  }
  setenv("TZ", zone, 1);
  tzset();
}

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
  EXPECT_EQ(
      joined(t.fields.millisecond, t.fields.microsecond, t.fields.nanosecond, t.fields.picosecond),
      "999|999999|999999900|999999900000");
  EXPECT_EQ(t.filetime_copy, t.filetime);
}

TEST(Filetime, WhatIsValid) {
  const uint64_t year_1900 = filetime_of(1900, 1, 1), year_3001 = filetime_of(3001, 1, 1);
  struct valid_case {
    uint64_t filetime;
    bool valid, local;
  };
  const auto check = [](const std::vector<valid_case>& cases) {
    for (const auto& c : cases) {
      const zk::time t = loaded(c.filetime);
      std::tm local = {};
      EXPECT_EQ(joined(t.filetime, t.valid, t.valid && t.local_tm(local)),
                joined(c.filetime, c.valid, c.local));
    }
  };
  use_zone("UTC");
  check({{0, false, false},
         {1, false, false},
         {year_1900 - 1, false, false},
         {year_1900, true, false},
         {epoch - 1, true, false},
         {epoch, false, false},
         {epoch + second - 1, false, false},
         {epoch + second, true, true},
         {year_3001 - 1, true, true},
         {year_3001, false, false},
         {0x7FFFFFFFFFFFFFFF, false, false},
         {0x8000000000000000, false, false}});
  EXPECT_EQ(joined(loaded(1).fields.year, loaded(1ULL << 63).fields.year), "1601|0");
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
  EXPECT_EQ(joined(local.tm_mon, local.tm_mday, local.tm_min, local.tm_wday, local.tm_yday),
            "2|1|30|6|60");
  EXPECT_FALSE(zk::unix_to_local_tm(-1, local) || local.tm_mday != 0);
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
    EXPECT_EQ(joined(none.valid, none.unix_seconds, none.filetime),
              joined(false, 0, epoch + value * second));
  }
  EXPECT_EQ(loaded(5, static_cast<zk::type_time>(4)).filetime, 0u);
  zk::time now;
  now.set_now();
  EXPECT_NEAR(static_cast<double>(now.unix_seconds), static_cast<double>(std::time(nullptr)), 2);
}

TEST(Time, DosPairsTmAndParts) {
  check_cases("time/dos", [](const strings& c) {
    const uint32_t pair = moment(c[0], dos_of);
    zk::time t;
    t.set_dos({static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)}, true);
    EXPECT_EQ(t.filetime != 0, t.valid);
    return t.valid ? shown(t.fields) : "";
  });
  check_cases("time/stamp", [](const strings& c) {
    const zk::time t = loaded(moment(c[0], filetime_of));
    return joined(t.dos_stamp.date, t.dos_stamp.time);
  });
  check_cases("time/tm", [](const strings& c) {
    std::tm tm = {};
    tm.tm_mon = std::stoi(c[0]), tm.tm_year = std::stoi(c[1]), tm.tm_mday = 1;
    zk::_windows_systemtime fields;
    zk::filetime_to_systemtime(zk::tm_to_filetime(tm, 0), fields);
    return joined(tm.tm_mon, tm.tm_year, shown(fields).substr(0, 10));
  });
  const uint64_t given = filetime_of(2004, 5, 6, 7, 8, 9) + 123 * 10000;
  uint64_t back = 0;
  zk::systemtime_to_filetime(loaded(given).fields, back);
  EXPECT_EQ(back, given);
}

TEST(NtpStamp, LayoutAndDifference) {
  const auto stamp = [](uint64_t ticks) {
    return zk::filetime_to_ntp64(zk::ntp_epoch_filetime + ticks);
  };
  EXPECT_EQ(zk::filetime_to_ntp64(1ULL << 63), 0u);
  EXPECT_EQ(stamp(0x01020304 * second), 0x04030201u);
  EXPECT_EQ(stamp(second / 3) >> 32, 0xC0545555u);
  EXPECT_EQ(stamp(second / 64) >> 32, 0x40u);  // below a sixteenth the leading zero digits are lost
  EXPECT_DOUBLE_EQ(zk::ntp64_diff_seconds(stamp(second / 2), stamp(second * 77)), 76.5);
  EXPECT_LE(zk::ntp64_diff_seconds(zk::ntp64_now(), zk::ntp64_now()), 1);
}

TEST(Parse, DatesAndTimes) {
  check_cases("time/date", [](const strings& c) {
    zk::_windows_systemtime f = {};
    return zk::parse_date_time(c[0].c_str(), nullptr, c[1], c[2][0], f) ? shown(f).substr(0, 10)
                                                                        : "";
  });
  check_cases("time/time", [](const strings& c) {
    zk::_windows_systemtime f = {};
    const bool read = zk::parse_date_time("2020-1-5", c[0].c_str(), "YMD", '-', f);
    return joined(read, f.hour, f.minute, f.second, f.millisecond);
  });
}

}  // namespace
