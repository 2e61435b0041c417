// Printed forms of dates and times.
#include <gtest/gtest.h>

#include <cstdlib>

#include "time/date_format_context.h"
#include "time/time_format.h"
#include "tools/index_builder.h"

namespace {

zk::time moment(int year = 2021) {
  zk::time t;
  t.set_value(sample::filetime_of(year, 3, 4, 5, 6, 7) + 891234, zk::type_time::filetime);
  return t;
}

TEST(MaskedDate, OrderSeparatorAndComma) {
  const struct {
    const char* mask;
    const char* expected;
    int year = 2021;
  } cases[] = {
      {"yyyy-mm-dd", "2021-03-04"},   {"mm/dd/yyyy", "03/04/2021"},  {"dd/mm/yyyy", "04/03/2021"},
      {"yyyy/mm/dd", "2021/03/04"},   {"mm-dd-yy", "03-04-21"},      {"mmm-dd-yy", "Mar-04-21"},
      {"mm dd,yyyy", "03 04, 2021"},  {"mm/dd,yyyy", "03/04/2021"},  {"mmm dd, yy", "Mar 04, 21"},
      {"mm,dd yyyy", "03 04 2021"},   {"dd, mm yyyy", "04 03 2021"}, {"mm.dd.yyyy", "03/04/2021"},
      {"dd-mm-yy", "04-03-05", 2005}, {"yy-dd-mm", "21-04-03"},      {"mm-yy-dd", "03-04-21"},
      {"xxxxxxxx", "03/04/2021"},     {"yy------", "03/04/21"},      {"mmm-----", "Mar/04/2021"},
      {"dd mm/yy", "04/03/21"},       {"-yyyymmdd", "03-04-2021"},   {"", ""},
      {"YYYY-MM-DD", "03/04/2021"},
  };
  for (const auto& c : cases) {
    std::string date = "old", time = "old";
    EXPECT_TRUE(zk::format_masked(date, time, moment(c.year), c.mask, ""));
    EXPECT_EQ(date, c.expected) << c.mask;
    EXPECT_EQ(time, "");
  }
}

TEST(MaskedTime, TokensAndFraction) {
  const struct {
    const char* mask;
    const char* expected;
  } cases[] = {
      {"hh:mm:ss.xxx", "05:06:07.089"},
      {"hh:mm:ss", "05:06:07"},
      {"hh:mm:ss.xxxx", "05:06:07.0891"},
      {"hh:mm:ss.xxxxxx", "05:06:07.089123"},
      {"hh:mm:ss.xxxxxxx", "05:06:07.0891234"},
      {"hh:mm:ss.xxxxxxxx", "05:06:07.08912340"},
      {"hh:mm:ss.xxxxxxxxx", "05:06:07.089123400"},
      {"hh:mm:ss.xxxxxxxxxx", "05:06:07"},
      {"hh:mm:ss.xxx x", "05:06:07.08912"},
      {"ss:xxxxx", ":07.08912"},
      {"hh-mm:xx", ""},
      {"ss:hh:mm", "05:06:07"},
  };
  for (const auto& [mask, expected] : cases) {
    std::string date, time;
    EXPECT_TRUE(zk::format_masked(date, time, moment(), "yyyy-mm-dd", mask));
    EXPECT_EQ(time, expected) << mask;
  }
  std::string date = "old", time = "old";
  EXPECT_FALSE(zk::format_masked(date, time, zk::time(), "yyyy-mm-dd", "hh:mm:ss"));
  EXPECT_EQ(date + time, "");
  EXPECT_EQ(zk::month_abbreviation(12), "Dec");
  EXPECT_EQ(zk::month_abbreviation(0), "");
}

TEST(DefaultForm, WithAndWithoutLocale) {
  const auto shown = [](bool fraction, bool short_year, const zk::locale_dates* dates, bool nano,
                        int year = 2021) {
    std::string date, time;
    zk::format_default(date, time, moment(year), fraction, short_year, dates, nano);
    return date + "|" + time;
  };
  EXPECT_EQ(shown(true, false, nullptr, false), "2021-03-04|05:06:07.089");
  EXPECT_EQ(shown(false, true, nullptr, false), "21-03-04|05:06:07");
  EXPECT_EQ(shown(true, true, nullptr, true, 1999), "99-03-04|05:06:07.089123400");

  for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(name);
  std::string found = "old";
  EXPECT_TRUE(zk::find_user_locale(found));
  EXPECT_EQ(found, "");
  const zk::locale_dates classic;
  EXPECT_EQ(shown(true, false, &classic, false), "03/04/21|05:06:07.089");

  setenv("LC_ALL", "xx_NOWHERE", 1);
  setenv("LANG", "C", 1);
  EXPECT_TRUE(zk::find_user_locale(found));
  EXPECT_EQ(found, "C");
  unsetenv("LANG");
  EXPECT_FALSE(zk::find_user_locale(found));
  EXPECT_EQ(found, "");
  const zk::locale_dates no_locale;
  EXPECT_EQ(shown(true, false, &no_locale, false), "2021-03-04|05:06:07.089");
  unsetenv("LC_ALL");
}

TEST(FormatMasks, DerivedRecord) {
  const struct {
    const char* date;
    const char* time;
    bool pair;
    char separator;
    int flags, digits;
  } cases[] = {
      {"yyyy-mm-dd", "hh:mm:ss.xxx", false, '-', 2 | 4 | 128, 3 << 1},
      {"dd mmm,yy.", "hh:mm:ss.xxxxxxxxxxxx", true, ' ', 1 | 8 | 16 | 32, 9 << 1 | 1},
      {"mm/dd/yyyy", "hh:mm:ss", false, '/', 2 | 4 | 64, 0},
      {"mm------", "hh:mm:ss.xxx", false, '-', 2, 0},
  };
  for (const auto& c : cases) {
    const zk::date_format_context context = zk::derive_format_masks(c.date, c.time, c.pair);
    EXPECT_EQ(context.separator, c.separator) << c.date;
    EXPECT_EQ(context.flags, c.flags) << c.date;
    EXPECT_EQ(context.digits, c.digits) << c.date;
  }
}

}  // namespace
