// Eight bytes of time; then a date mask, a time mask, a date, a time, and the date's order with its
// separator, as texts.
#include <cstddef>
#include <cstring>

#include "fuzz/support.h"
#include "time/date_format_context.h"
#include "time/time_format.h"
#include "time/time_parse.h"

namespace {

// What a full mask prints is read back.
void check_way_back(const zk::time& t) {
  static constexpr const char* forms[][2] = {{"yyyy-mm-dd", "YMD"},
                                             {"dd-mm-yyyy", "DMY"},
                                             {"mmm-dd-yyyy", "MonDY"},
                                             {"dd-mmm-yy", "DMonY"}};
  for (const auto& [mask, order] : forms) {
    const bool short_year = std::string_view(mask).size() == 9;  // 1931 to 2030
    if (short_year && (t.fields.year < 1931 || t.fields.year > 2030)) continue;
    std::string date;
    std::string time;
    require(zk::format_masked(date, time, t, mask, "hh:mm:ss.xxx"), "a valid time prints");
    zk::_windows_systemtime f = {};
    require(zk::parse_date_time(date.c_str(), time.c_str(), order, '-', f),
            "a printed time is read");
    f.day_of_week = t.fields.day_of_week;  // which isn't in the text
    require(std::memcmp(&f, &t.fields, offsetof(zk::_windows_systemtime, microsecond)) == 0,
            "a printed time is read as it was");
    uint64_t filetime = 0;
    zk::systemtime_to_filetime(f, filetime);
    // Of years that end a century not all have the leap day that they should.
    require(f.year % 100 == 0 || filetime == t.filetime / 10000 * 10000, "and gives its ticks");
  }
}

void check_dos(zk::dos_pair pair) {
  zk::time t;
  t.set_dos(pair, true);
  const int year = (pair.date >> 9) + 1980;
  const int day = pair.date & 31;
  if (!t.valid || year == 2000 || day > 28) return;
  require(t.fields.year == year && t.fields.month == (pair.date >> 5 & 15) && t.fields.day == day &&
              t.fields.hour == pair.time >> 11 && t.fields.minute == (pair.time >> 5 & 63) &&
              t.fields.second == (pair.time & 31) * 2,
          "a DOS pair means its fields");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 8) return 0;
  const uint64_t filetime = zk::load_le64(data);
  check_dos({static_cast<uint16_t>(filetime), static_cast<uint16_t>(filetime >> 16)});
  zk::time t;
  t.set_value(filetime, zk::type_time::filetime);
  if (t.valid) check_way_back(t);
  const std::vector<std::string> texts = texts_of(data + 8, size - 8, 5);
  std::string date;
  std::string time;
  require(zk::format_masked(date, time, t, texts[0], texts[1]) == t.valid,
          "only a valid time prints");
  require(date.size() <= 12 && time.size() <= 18, "printed forms are short");
  zk::derive_format_masks(texts[0], texts[1], size % 2 == 0);
  zk::format_default(date, time, t, true, true, nullptr, true);

  if (texts[4].empty()) return 0;
  zk::_windows_systemtime fields = {};
  const std::string order = texts[4].substr(0, texts[4].size() - 1);
  if (zk::parse_date_time(texts[2].c_str(), texts[3].c_str(), order, texts[4].back(), fields)) {
    require(fields.month <= 12 && fields.day <= 31, "a date's month and day are bounded");
    uint64_t made = 0;
    zk::systemtime_to_filetime(fields, made);
    t.set_value(made, zk::type_time::unix_time);
  }
  return 0;
}
