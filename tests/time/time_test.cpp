// Time values: limits, DOS pairs, local time, stamps, printed forms, and what options give.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <locale>
#include <optional>
#include <stdexcept>

#include "tests/support/check_cases.h"
#include "time/date_format_context.h"
#include "time/shown_fields.h"
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
  int parts[] = {1601, 1, 1, 0, 0, 0};
  size_t next = 0;
  for (const string& part : cells(replaced(replaced(text, " ", "-"), ":", "-"), '-')) {
    if (next == std::size(parts)) throw std::invalid_argument("not a moment: " + text);
    if (!text.empty()) parts[next++] = number<int>(part);
  }
  return made(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]);
}

// The offset from UTC is looked up once a second, so a new zone shows with the next one.
void use_zone(const char* zone) {
  const char* const used = std::getenv("TZ");
  if (used && string(used) == zone) return;
  const std::time_t before = std::time(nullptr);
  while (std::time(nullptr) == before) {
  }
  setenv("TZ", zone, 1);
  tzset();
}

TEST(Time, CalendarFields) {
  std::tm none = {};
  none.tm_mday = 5;
  EXPECT_FALSE(zk::unix_to_local_tm(-1, none));
  EXPECT_EQ(none.tm_mday, 0);
  for (int64_t day = 0; day < 511000; day += 13) {  // 1601 to 3000, against the C library
    const std::time_t seconds = (day - 134774) * 86400 + 12345;
    const uint64_t moment = epoch + static_cast<uint64_t>(seconds) * second;
    zk::_windows_systemtime fields;
    zk::filetime_to_systemtime(moment, fields);
    ASSERT_EQ(shown(fields), shown(*std::gmtime(&seconds)));
    string date;
    string time;
    const bool valid = zk::format_masked(date, time, loaded(moment), "mmm-dd-yy", "");
    ASSERT_EQ(date, valid ? shown(*std::gmtime(&seconds), "%b-%d-%y") : "");
  }
  const auto f = loaded(epoch + 2 * second - 1).fields;  // each unit states the whole fraction
  EXPECT_EQ(joined(f.millisecond, f.microsecond, f.nanosecond, f.picosecond),
            "999|999999|999999900|999999900000");
}

// Expects of a time that the fields which rows print are those of a loaded one.
void check_shown_fields(const zk::time& t, auto value) {
  zk::_windows_systemtime f = {};
  ASSERT_EQ(zk::shown_fields(value, f), t.valid);
  f.day_of_week = t.fields.day_of_week;
  if (t.valid) {
    ASSERT_EQ(joined(shown(f), f.millisecond, f.nanosecond),
              joined(shown(t.fields), t.fields.millisecond, t.fields.nanosecond));
  }
}

// What a value gives in a zone.
string loaded_in(const char* zone, const test_case& c) {
  use_zone(zone);
  const auto type = static_cast<zk::type_time>(number32(c["type"]));
  const uint64_t value = moment(c["at"], filetime_of) + number(c["plus"]);
  const zk::time t = loaded(value, type);
  if (type == zk::type_time::filetime) check_shown_fields(t, value);
  std::tm local = {};
  const bool has_local = t.valid && t.local_tm(local);
  if (has_local) {
    zk::time stored;
    EXPECT_TRUE(stored.set_tm(local, 7, false));  // local time that is stored as UTC
    EXPECT_EQ(joined(shown(stored.fields), stored.fields.nanosecond),
              joined(shown(local), 7000000));
  }
  EXPECT_EQ(t.filetime_copy, t.unix_seconds == 0 ? 0 : t.filetime);
  return joined(t.valid, t.filetime, t.unix_seconds, shown(t.fields),
                has_local ? shown(local, "%Y-%m-%d %H:%M:%S w%w d%j") : "");
}

CASES(time, UTC) {
  return loaded_in("UTC", c);
}
CASES(time, WEST) {
  return loaded_in("WEST5WST4,0/0,J365/25", c);
}
CASES(time, EAST) {
  return loaded_in("EAST-5:30", c);
}

CASES(time, dos) {
  const uint32_t pair = moment(c[0], sample::dos_of);
  zk::time t;
  t.set_dos({static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)}, true);
  EXPECT_EQ(t.filetime != 0, t.valid);
  return t.valid ? shown(t.fields) : "";
}

CASES(time, stamp) {
  const uint64_t given = moment(c[0], filetime_of);
  const zk::dos_pair stamp = loaded(given).dos_stamp;
  zk::dos_pair made = {};
  EXPECT_EQ(zk::filetime_to_dos(given, made), stamp.date != 0);
  EXPECT_EQ(joined(made.date, made.time), joined(stamp.date, stamp.time));
  return joined(stamp.date, stamp.time);
}

CASES(time, tm) {
  std::tm tm = {};
  tm.tm_mon = number<int>(c[0]);
  tm.tm_year = number<int>(c[1]);
  tm.tm_mday = 1;
  const uint64_t made = zk::tm_to_filetime(tm, 0);
  return joined(tm.tm_mon, tm.tm_year, shown(loaded(made).fields).substr(0, 10));
}

TEST(Time, ShownFieldsOfEveryDosWord) {
  for (uint32_t word = 0; word < 0x10000; ++word) {
    const auto each = static_cast<uint16_t>(word);
    for (const zk::dos_pair pair : {zk::dos_pair{each, 0x6769}, zk::dos_pair{0x5AFF, each}}) {
      zk::time t;
      t.set_dos(pair, true);
      check_shown_fields(t, pair);
    }
  }
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

CASES(time, mask) {
  string date = "old";
  string time = "old";
  const zk::time t = loaded(moment(c["month"] + "-4 5:6:7", filetime_of) + 891234);
  EXPECT_EQ(zk::format_masked(date, time, t, c["date"], c["time"]), t.valid);
  return joined(date, time);
}

TEST(Time, TellsWhetherALocaleIsFound) {
  for (const char* name : {"C", "none"}) {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) setenv(variable, name, 1);
    string found_name;
    std::optional<std::locale> found;
    EXPECT_EQ(zk::find_user_locale(found_name, found), *name == 'C');
  }
}

CASES(time, derived) {
  static constexpr const char* flag_names[] = {"month name",     "month",         "four-digit year",
                                               "short year",     "comma",         "day month year",
                                               "month day year", "year month day"};
  const zk::date_format_context context =
      zk::derive_format_masks(c["date"], c["time"], c["paired"] == "yes");
  string seen = joined(context.separator);
  for (size_t bit = 0; bit < std::size(flag_names); ++bit) {
    if ((context.flags >> bit & 1) != 0) seen += joined("", flag_names[bit]);
  }
  if ((context.digits & 1) != 0) seen += "|paired";
  return joined(seen, context.digits >> 1);
}

CASES(time, parsed) {
  zk::_windows_systemtime f = {};
  const bool read =
      zk::parse_date_time(c[0].c_str(), c["time"].c_str(), c["order"], c["separator"].at(0), f);
  return joined(read, shown(f), f.millisecond);
}

}  // namespace
