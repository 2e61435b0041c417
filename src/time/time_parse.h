// Dates and times as options give them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "time/zk_time.h"

namespace zk {

// Reads a date whose numbers are in `order` ("YMD", say; "Mon" in it means a month's English
// abbreviation) between `separator`s, and a time, or midnight where `time` is null or empty. Sets
// the eight SYSTEMTIME fields, `day_of_week` staying 0. False if either can't be read.
[[nodiscard]] bool parse_date_time(const char* date, const char* time, std::string_view order,
                                   char separator, _windows_systemtime& fields);

// Reads the three numbers of a date. Empty tokens are skipped before the third number and
// twice before the second. Two-digit years mean 1931 to 2030. Month 0 and day 0 pass; a month
// above 12 or a day above 31 doesn't.
bool parse_date_fields(const char* date, std::string order, char separator, uint32_t& day,
                       uint32_t& month, uint32_t& year);

// Reads h:m or h:m:s, the seconds with a fraction, maybe followed by "am" or "pm". No range is
// tested.
// Deliberate: pm adds 12 to any hour, so that 12:30 pm gives hour 24.
bool parse_time_fields(std::string text, int& hour, int& minute, double& seconds);

}  // namespace zk
