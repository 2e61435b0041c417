// Time values: limits, DOS pairs, local time, stamps, printed forms, and what options give.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/case_file.h"
#include "time/date_format_context.h"
#include "time/time_format.h"
#include "time/time_parse.h"
#include "tools/index_builder.h"

namespace {

using sample::filetime_of;
using std::string;

constexpr uint64_t epoch = zk::unix_epoch_filetime;
constexpr uint64_t second = zk::ticks_per_second;

string shown(const zk::_windows_systemtime& f) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d w%d", f.year, f.month, f.day,
                f.hour, f.minute, f.second, f.day_of_week);
  return text;
}

string shown(const std::tm& tm, const char* format = "%Y-%m-%d %H:%M:%S w%w") {
  char text[64];
  std::strftime(text, sizeof text, format, &tm);
  return text;
}

zk::time loaded(uint64_t value, zk::type_time type = zk::type_time::filetime) {
  zk::time t;
  t.set_value(value, type);
  return t;
}

// What `made` gives for a moment, all its parts being optional.
template <class Made>
auto moment(const string& text, Made made) {
  int p[6] = {1601, 1, 1};
  std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", p, p + 1, p + 2, p + 3, p + 4, p + 5);
  return made(p[0], p[1], p[2], p[3], p[4], p[5]);
}

// A moment of the fourth whose masks and forms are tested, in any year and month.
zk::time in_month(const string& month) {
  return loaded(moment(month + "-4 5:6:7", filetime_of) + 891234);
}

// The offset from UTC is looked up once a second, so a new zone shows with the next one.
void use_zone(const char* zone) {
  const std::time_t before = std::time(nullptr);
  while (std::time(nullptr) == before) {
  }
  setenv("TZ", zone, 1);
  tzset();
}

TEST(Time, CalendarFields) {
  for (int64_t day = 0; day < 511000; day += 13) {  // 1601 to 3000, against the C library
    const std::time_t seconds = (day - 134774) * 86400 + 12345;
    zk::_windows_systemtime fields;
    zk::filetime_to_systemtime(epoch + static_cast<uint64_t>(seconds) * second, fields);
    ASSERT_EQ(shown(fields), shown(*std::gmtime(&seconds)));
  }
  const auto f = loaded(epoch + 2 * second - 1).fields;  // each unit states the whole fraction
  EXPECT_EQ(joined(f.millisecond, f.microsecond, f.nanosecond, f.picosecond),
            "999|999999|999999900|999999900000");
}

TEST(Time, LoadedInThreeZones) {
  for (const char* zone : {"UTC", "WEST5WST4,0/0,J365/25", "EAST-5:30"}) {
    use_zone(zone);
    check_cases("time/" + string(zone).substr(0, 4), [](const strings& c) {
      const auto type = static_cast<zk::type_time>(number32(c[0]));
      const zk::time t = loaded(moment(c[1], filetime_of) + number(c[2]), type);
      std::tm local = {};
      const bool has_local = t.valid && t.local_tm(local);
      EXPECT_EQ(t.filetime_copy, t.unix_seconds == 0 ? 0 : t.filetime);
      return joined(t.valid, t.filetime, t.unix_seconds, shown(t.fields),
                    has_local ? shown(local, "%Y-%m-%d %H:%M:%S w%w d%j") : "");
    });
  }
  std::tm noon = {};
  EXPECT_FALSE(zk::unix_to_local_tm(-1, noon) || noon.tm_mday != 0);
  strptime("2000-01-02 12", "%Y-%m-%d %H", &noon);
  zk::time t;
  EXPECT_TRUE(t.set_tm(noon, 7, false));  // local time that is stored as UTC
  EXPECT_EQ(t.filetime, filetime_of(2000, 1, 2, 12) + 70000);
  use_zone("UTC");
}

TEST(Time, DosPairsTmAndParts) {
  check_cases("time/dos", [](const strings& c) {
    const uint32_t pair = moment(c[0], sample::dos_of);
    zk::time t;
    t.set_dos({static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)}, true);
    EXPECT_EQ(t.filetime != 0, t.valid);
    return t.valid ? shown(t.fields) : "";
  });
  check_cases("time/stamp", [](const strings& c) {
    const zk::dos_pair stamp = loaded(moment(c[0], filetime_of)).dos_stamp;
    return joined(stamp.date, stamp.time);
  });
  check_cases("time/tm", [](const strings& c) {
    std::tm tm = {};
    tm.tm_mon = std::stoi(c[0]);
    tm.tm_year = std::stoi(c[1]);
    tm.tm_mday = 1;
    const uint64_t made = zk::tm_to_filetime(tm, 0);
    return joined(tm.tm_mon, tm.tm_year, shown(loaded(made).fields).substr(0, 10));
  });
  const uint64_t given = filetime_of(2004, 5, 6, 7, 8, 9) + 123 * 10000;
  uint64_t back = 0;
  zk::systemtime_to_filetime(loaded(given).fields, back);
  EXPECT_EQ(back, given);
}

TEST(Time, NowAndNtpStamps) {
  const auto stamp = [](uint64_t ticks) {
    return zk::filetime_to_ntp64(zk::ntp_epoch_filetime + ticks);
  };
  EXPECT_EQ(zk::filetime_to_ntp64(1ULL << 63), 0u);
  EXPECT_EQ(stamp(0x01020304 * second), 0x04030201u);
  EXPECT_EQ(stamp(second / 3) >> 32, 0xC0545555u);
  EXPECT_EQ(stamp(second / 64) >> 32, 0x40u);  // below a sixteenth the leading zero digits are lost
  EXPECT_DOUBLE_EQ(zk::ntp64_diff_seconds(stamp(second / 2), stamp(second * 77)), 76.5);
  zk::time now;
  now.set_now();
  EXPECT_LE(zk::ntp64_diff_seconds(zk::ntp64_now(), zk::filetime_to_ntp64(now.filetime)), 1);
  EXPECT_NEAR(static_cast<double>(now.unix_seconds), static_cast<double>(std::time(nullptr)), 2);
}

TEST(Time, FormsAndParsing) {
  check_cases("time/mask", [](const strings& c) {
    string date = "old", time = "old";
    const zk::time t = in_month(c[2]);
    EXPECT_EQ(zk::format_masked(date, time, t, c[0], c[1]), t.valid);
    return joined(date, time);
  });
  check_cases("time/default", [](const strings& c) {
    string date = "old", time = "old";
    const bool fraction = c[0] == "fraction", short_year = c[1] == "short", nano = c[2] == "nano";
    zk::format_default(date, time, in_month(c[3]), fraction, short_year, nullptr, nano);
    return joined(date, time);
  });
  check_cases("time/derived", [](const strings& c) {
    const zk::date_format_context context = zk::derive_format_masks(c[0], c[1], c[2] == "true");
    return joined(context.separator, int{context.flags}, int{context.digits});
  });
  check_cases("time/parsed", [](const strings& c) {
    zk::_windows_systemtime f = {};
    const bool read = zk::parse_date_time(c[0].c_str(), c[3].c_str(), c[1], c[2][0], f);
    return joined(read, shown(f), f.millisecond);
  });
}

}  // namespace
