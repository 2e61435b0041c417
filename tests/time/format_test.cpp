// Printed forms of dates and times.
#include <gtest/gtest.h>

#include "tests/support/case_file.h"
#include "time/date_format_context.h"
#include "time/time_format.h"
#include "tools/index_builder.h"

namespace {

zk::time moment(int year = 2021) {
  zk::time t;
  t.set_value(sample::filetime_of(year, 3, 4, 5, 6, 7) + 891234, zk::type_time::filetime);
  return t;
}

TEST(MaskedForm, DateAndTime) {
  const auto shown = [](const zk::time& t, const std::string& date_mask,
                        const std::string& time_mask) {
    std::string date = "old", time = "old";
    EXPECT_EQ(zk::format_masked(date, time, t, date_mask, time_mask), t.valid);
    return date + time;
  };
  check_cases("time/date_mask", [&](const strings& c) {
    return shown(moment(c.size() > 1 ? 2005 : 2021), c[0], "");
  });
  check_cases("time/time_mask", [&](const strings& c) { return shown(moment(), "", c[0]); });
  EXPECT_EQ(shown(zk::time(), "yyyy-mm-dd", "hh:mm:ss"), "");
  check_cases("time/derived", [](const strings& c) {
    const zk::date_format_context context = zk::derive_format_masks(c[0], c[1], c[2] == "true");
    return joined(context.separator, int{context.flags}, int{context.digits});
  });
}

TEST(DefaultForm, YearsAndFractions) {
  const auto shown = [](bool fraction, bool short_year, bool nano, const zk::time& t = moment()) {
    std::string date = "old", time = "old";
    zk::format_default(date, time, t, fraction, short_year, nullptr, nano);
    return date + "|" + time;
  };
  EXPECT_EQ(shown(false, true, false), "21-03-04|05:06:07");
  EXPECT_EQ(shown(true, true, true, moment(1999)), "99-03-04|05:06:07.089123400");
  EXPECT_TRUE(shown(false, true, false, moment(2000)).starts_with("00-03-"));
  EXPECT_EQ(shown(true, false, false, zk::time()), "|");
}

}  // namespace
