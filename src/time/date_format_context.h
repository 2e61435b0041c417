// The date and time masks as one small record, made once the options are read. Nothing prints by
// it.
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

// Derives the record. A date mask without year, month or day leaves it as far as it came.
date_format_context derive_format_masks(std::string_view date_mask, std::string_view time_mask,
                                        bool pair_datetime);

}  // namespace zk
