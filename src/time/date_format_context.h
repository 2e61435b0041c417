// The date and time masks in compiled form. The record is kept with the run's parameters; printing
// doesn't use it, see time_format.h.
#pragma once

#include <cstdint>
#include <string_view>

namespace zk {

struct date_format_context {
  enum flag : uint8_t {
    month_name = 1,
    month = 2,
    four_digit_year = 4,
    two_digit_year = 8,
    comma = 16,
    day_month_year = 32,
    month_day_year = 64,
    year_month_day = 128,
  };

  uint32_t lowest_year = 1900;
  uint32_t highest_year = 2600;
  char separator = 0;
  uint8_t flags = 0;
  uint8_t digits = 0;  // fraction digits, at most 9, in bits 1 to 4; date and time paired in bit 0
};

// Compiles both masks. The parts are looked for in the order month, year, day; at the first that
// the date mask lacks, the record is returned with what was found so far.
date_format_context derive_format_masks(std::string_view date_mask, std::string_view time_mask,
                                        bool pair_datetime);

}  // namespace zk
