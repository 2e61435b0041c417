#include "time/date_format_context.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zk {

date_format_context derive_format_masks(std::string_view date_mask, std::string_view time_mask,
                                        bool pair_datetime) {
  constexpr size_t none = std::string_view::npos;
  const auto in_mask = [&](std::string_view token) { return date_mask.find(token) != none; };
  date_format_context context;
  const auto set = [&](date_format_context::flag flag) {
    context.flags = static_cast<uint8_t>(context.flags | flag);
  };
  context.digits = pair_datetime ? 1 : 0;
  context.separator = in_mask("/") ? '/' : in_mask("-") ? '-' : in_mask(" ") ? ' ' : '/';
  if (in_mask(",")) set(date_format_context::comma);
  if (!in_mask("mm")) return context;
  set(in_mask("mmm") ? date_format_context::month_name : date_format_context::month);
  if (!in_mask("yy")) return context;
  set(in_mask("yyyy") ? date_format_context::four_digit_year : date_format_context::two_digit_year);
  const size_t day_at = date_mask.find("dd");
  if (day_at == none) return context;
  if (date_mask.starts_with("yy")) {
    set(date_format_context::year_month_day);
  } else {
    const bool day_leads = day_at < date_mask.find("mm");
    set(day_leads ? date_format_context::day_month_year : date_format_context::month_day_year);
  }
  if (const size_t fraction_at = time_mask.find("xxx"); fraction_at != none) {
    const size_t count = std::min<size_t>(time_mask.rfind('x') - fraction_at + 1, 9);
    context.digits = static_cast<uint8_t>(context.digits | count << 1);
  }
  return context;
}

}  // namespace zk
