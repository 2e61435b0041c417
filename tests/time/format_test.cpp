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

// clang-format off

TEST(MaskedForm, DateAndTime) {
  struct mask_case { const char *mask, *expected; int year = 2021; };
  for (const auto& c : std::vector<mask_case>{
           {"yyyy-mm-dd", "2021-03-04"}, {"mm/dd/yyyy", "03/04/2021"}, {"dd/mm/yyyy", "04/03/2021"},
           {"yyyy/mm/dd", "2021/03/04"}, {"mm-dd-yy", "03-04-21"}, {"mmm-dd-yy", "Mar-04-21"},
           {"mm dd,yyyy", "03 04, 2021"}, {"mm/dd,yyyy", "03/04/2021"}, {"mmm dd, yy", "Mar 04, 21"},
           {"mm,dd yyyy", "03 04 2021"}, {"dd, mm yyyy", "04 03 2021"}, {"mm dd,mmm yy", "Mar 04 21"},
           {"mm dd yy,", "03 04, 21"}, {"mm.dd.yyyy", "03/04/2021"}, {"dd-mm-yy", "04-03-05", 2005},
           {"yy-dd-mm", "21-04-03"}, {"mm-yy-dd", "03-04-21"}, {"xxxxxxxx", "03/04/2021"},
           {"yy------", "03/04/21"}, {"mmm-----", "Mar/04/2021"}, {"dd mm/yy", "04/03/21"},
           {"-yyyymmdd", "03-04-2021"}, {"", ""}, {"YYYY-MM-DD", "03/04/2021"}}) {
    std::string date = "old", time = "old";
    EXPECT_TRUE(zk::format_masked(date, time, moment(c.year), c.mask, ""));
    EXPECT_EQ(date + time, c.expected) << c.mask;
  }
  for (const auto& c : std::vector<mask_case>{
           {"hh:mm:ss.xxx", "05:06:07.089"}, {"hh:mm:ss", "05:06:07"}, {"hh:mm:ss.xxxx", "05:06:07.0891"},
           {"hh:mm:ss.xxxxxx", "05:06:07.089123"}, {"hh:mm:ss.xxxxxxxxx", "05:06:07.089123400"},
           {"hh:mm:ss.xxxxxxxxxx", "05:06:07"}, {"hh:mm:ss.xxx x", "05:06:07.08912"},
           {"ss:xxxxx", ":07.08912"}, {"hh-mm:xx", ""}, {"ss:hh:mm", "05:06:07"}}) {
    std::string date, time;
    EXPECT_TRUE(zk::format_masked(date, time, moment(), "yyyy-mm-dd", c.mask));
    EXPECT_EQ(time, c.expected) << c.mask;
  }
  std::string date = "old", time = "old";
  EXPECT_FALSE(zk::format_masked(date, time, zk::time(), "yyyy-mm-dd", "hh:mm:ss"));
  EXPECT_EQ(date + time, "");
}

TEST(DefaultForm, WithAndWithoutLocale) {
  const auto shown = [](bool fraction, bool short_year, const zk::locale_dates* dates, bool nano,
                        const zk::time& t = moment()) {
    std::string date = "old", time = "old";
    zk::format_default(date, time, t, fraction, short_year, dates, nano);
    return date + "|" + time;
  };
  EXPECT_EQ(shown(false, true, nullptr, false), "21-03-04|05:06:07");
  EXPECT_EQ(shown(true, true, nullptr, true, moment(1999)), "99-03-04|05:06:07.089123400");
  EXPECT_TRUE(shown(false, true, nullptr, false, moment(2000)).starts_with("00-03-"));
  EXPECT_EQ(shown(true, false, nullptr, false, zk::time()), "|");

  for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(name);
  std::string found = "old";
  EXPECT_TRUE(zk::find_user_locale(found) && found.empty());
  const zk::locale_dates classic;
  EXPECT_EQ(shown(true, false, &classic, false), "03/04/21|05:06:07.089");
  setenv("LC_ALL", "xx_NOWHERE", 1);
  setenv("LANG", "POSIX", 1);
  EXPECT_TRUE(zk::find_user_locale(found) && found == "POSIX");
  setenv("LC_TIME", "C", 1);
  EXPECT_TRUE(zk::find_user_locale(found) && found == "C");
  setenv("LC_TIME", "xx", 1), setenv("LANG", "xx", 1);
  EXPECT_FALSE(zk::find_user_locale(found));
  EXPECT_EQ(found, "");
  const zk::locale_dates no_locale;
  EXPECT_EQ(shown(true, false, &no_locale, false), "2021-03-04|05:06:07.089");
  for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(name);
}

TEST(FormatMasks, DerivedRecord) {
  struct derived_case { const char *date, *time; bool pair; char separator; int flags, digits; };
  for (const auto& c : std::vector<derived_case>{
           {"yyyy-mm-dd", "hh:mm:ss.xxx", false, '-', 2 | 4 | 128, 3 << 1},
           {"dd mmm,yy.", "hh:mm:ss.xxxxxxxxxxxx", true, ' ', 1 | 8 | 16 | 32, 9 << 1 | 1},
           {"mm/dd/yyyy", "hh:mm:ss", false, '/', 2 | 4 | 64, 0}, {"mm------", "ss:xxx", false, '-', 2, 0}}) {
    const zk::date_format_context context = zk::derive_format_masks(c.date, c.time, c.pair);
    EXPECT_EQ(context.separator, c.separator) << c.date;
    EXPECT_EQ(context.flags * 100 + context.digits, c.flags * 100 + c.digits) << c.date;
  }
}

}  // namespace
