#include "front/option_actions.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "front/arguments.h"
#include "opts/cmd_params.h"
#include "text/path_text.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "time/time_parse.h"
#include "time/zk_time.h"
#include "uni/fileio.h"

namespace {

constexpr std::string_view end_of_day = "23:59:59";
constexpr uint32_t largest_version_file = 0x10000;

// Splits pairs of an alias option. False if nothing is there to split.
bool split_pairs(const std::string& value, std::vector<std::string>& pieces) {
  if (value.find('|') == std::string::npos) return false;
  pieces = zk::split_trimmed(value, "|");
  return !pieces.empty();
}

bool imbalanced_aliases() {
  std::fprintf(stderr, "%s, aborting\n", "imbalanced alias to true pathfiles");
  return false;
}

void cut_trailing_slash(std::string& path) {
  if (path.ends_with('/')) path.pop_back();
}

// An option's date and time, and the separator of the date.
struct option_moment {
  std::string date;
  std::string time;
  char separator;
};

// Splits at the first blank. False for a date that is empty or has no separator.
bool split_moment(const std::string& value, option_moment& moment) {
  const size_t blank = std::min(value.find(' '), value.size());
  moment.date = value.substr(0, blank);
  moment.time = blank < value.size() ? value.substr(blank + 1) : "";
  const auto in_date = [&](char c) { return moment.date.find(c) != std::string::npos; };
  moment.separator = in_date('/') ? '/' : '-';
  return in_date(moment.separator);
}

// One end of the time span.
struct span_end {
  bool& set;
  uint64_t& filetime;
  uint32_t& unix_seconds;

  void clear() const { assign(false, 0, 0); }
  void assign(bool is_set, uint64_t ft, uint32_t seconds) const {
    set = is_set;
    filetime = ft;
    unix_seconds = seconds;
  }
  // Reads the moment. Left clear if that fails.
  void read(const option_moment& moment, const std::string& time) const {
    zk::_windows_systemtime fields = {};
    if (!zk::parse_date_time(moment.date.c_str(), time.c_str(), "YMD", moment.separator, fields)) {
      return;
    }
    uint64_t ft = 0;
    zk::systemtime_to_filetime(fields, ft);
    zk::time t;
    t.set_value(ft, zk::type_time::filetime);
    if (t.valid) assign(true, ft, static_cast<uint32_t>(t.unix_seconds));
  }
};

span_end start_of(cmd_params& params) {
  return {params.start_time_set, params.start_filetime, params.start_unix};
}

span_end stop_of(cmd_params& params) {
  return {params.stop_time_set, params.stop_filetime, params.stop_unix};
}

bool set_mask(std::string& mask, const std::string& value, bool accepted) {
  if (accepted) {
    mask = value;
    zk::to_lower(mask);
  } else {
    std::fprintf(stderr, "invalid %s, using default format\n", value.c_str());
  }
  return true;
}

}  // namespace

void clear_output_forms(cmd_params& params) {
  params.mode_xml = params.mode_csv = params.mode_csvl2t = false;
  params.mode_bodyfile = params.mode_multiline = false;
}

bool open_diags(cmd_params& params, argument_list& args, const std::string& value) {
  auto stream = std::make_unique<std::ofstream>(value);
  if (!stream->good()) return true;
  params.diag_path = value;
  params.diag_stream = std::move(stream);
  params.diag_on = true;
  params.diag_write(params.cmdline);
  if (take_flag("-l2", args)) {
    params.diag_level = 2;
  } else if (take_flag("-l3", args)) {
    params.diag_level = 3;
  }
  return true;
}

bool set_out_path(cmd_params& params, argument_list& args, const std::string& value) {
  params.out_path = expand_env(value, true);
  zk::replace_char(params.out_path, '\\', '/');
  params.out_path_set = true;
  using access = uni::fileio::access;
  const bool append = has_option("-append", args, 1);
  uni::fileio probe;
  if (!(append && probe.open(params.out_path, access::write)) &&
      !probe.open(params.out_path, access::write_truncated)) {
    std::fprintf(stderr, "prob opening file %s for output, aborting\n", params.out_path.c_str());
    return false;
  }
  probe.close();
  std::remove(params.out_path.c_str());
  return true;
}

bool add_aliases(cmd_params& params, argument_list& /*args*/, const std::string& value) {
  std::vector<std::string> pieces;
  if (!split_pairs(value, pieces) || pieces.size() % 2 != 0) return imbalanced_aliases();
  for (size_t i = 0; i < pieces.size(); i += 2) {
    std::string alias = expand_env(pieces[i], true);
    params.aliases.emplace(zk::to_lower(alias), expand_env(pieces[i + 1], true));
  }
  return true;
}

bool add_alias_paths(cmd_params& params, argument_list& /*args*/, const std::string& value) {
  std::vector<std::string> pieces;
  if (!split_pairs(value, pieces)) {
    params.alias_paths.emplace("*", expand_env(value, true));
    return true;
  }
  if (pieces.size() % 2 != 0) return imbalanced_aliases();
  for (size_t i = 0; i < pieces.size(); i += 2) {
    std::string alias = expand_env(pieces[i], true);
    std::string path = expand_env(pieces[i + 1], true);
    zk::to_lower(alias);
    cut_trailing_slash(alias);
    cut_trailing_slash(path);
    zk::remove_char(path, '"');
    params.alias_paths.emplace(std::move(alias), std::move(path));
  }
  return true;
}

bool set_start_time(cmd_params& params, argument_list& /*args*/, const std::string& value) {
  start_of(params).clear();
  option_moment moment;
  if (!split_moment(value, moment)) return false;
  start_of(params).read(moment, moment.time);
  if (params.start_time_set) {
    // An open end.
    stop_of(params).assign(true, std::numeric_limits<uint64_t>::max(),
                           std::numeric_limits<uint32_t>::max());
  } else {
    stop_of(params).clear();
    std::fputs("invalid start time, ignoring\n", stderr);
  }
  return true;
}

bool set_stop_time(cmd_params& params, argument_list& /*args*/, const std::string& value) {
  stop_of(params).clear();
  option_moment moment;
  if (!split_moment(value, moment)) return false;
  if (moment.time.empty()) moment.time = end_of_day;
  // Deliberate: the date is read as the time too, and the time given takes no part. A date without
  // a colon is thus no stop time.
  stop_of(params).read(moment, moment.date);
  const bool before_start = params.start_time_set && params.stop_filetime < params.start_filetime;
  if (!params.stop_time_set || before_start) {
    stop_of(params).clear();
    std::fputs("invalid stop time, ignoring\n", stderr);
  }
  return true;
}

bool set_date_format(cmd_params& params, argument_list& /*args*/, const std::string& value) {
  return set_mask(params.date_format, value, value.size() == 8 || value.size() == 10);
}

bool set_time_format(cmd_params& params, argument_list& /*args*/, const std::string& value) {
  const size_t size = value.size();
  const bool fits = size == 8 || (size >= 12 && size <= 18);
  return set_mask(params.time_format, value, fits && value.find(':') != std::string::npos);
}

bool enable_quoted_fields(cmd_params& params, argument_list& /*args*/,
                          const std::string& /*value*/) {
  params.quoted_csv_fields = true;
  if (params.csv_separator.find('\t') == std::string::npos) zk::trim(params.csv_separator);
  params.delim_char = 0;
  params.field_pad = false;
  return true;
}

void read_system_version(cmd_params& params, const char* path) {
  std::vector<uint8_t> bytes;
  if (!uni::load_file(bytes, path, largest_version_file)) return;
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  constexpr std::string_view key = ">ProductVersion<";
  constexpr std::string_view opening = "<string>";
  const size_t key_at = text.find(key);
  if (key_at == std::string_view::npos) return;
  const size_t opening_at = text.find(opening, key_at);
  if (opening_at == std::string_view::npos) return;
  const size_t begin = opening_at + opening.size();
  const size_t end = text.find("</s", begin);
  if (end == std::string_view::npos) return;
  params.os_product_version = text.substr(begin, end - begin);

  const auto numbers = zk::split_trimmed(params.os_product_version, ".");
  int32_t* const targets[] = {&params.os_version_major, &params.os_version_minor,
                              &params.os_version_patch};
  for (size_t i = 0; i < numbers.size() && i < std::size(targets); ++i) {
    uint32_t number = 0;
    zk::read_number(numbers[i].c_str(), number);
    *targets[i] = static_cast<int32_t>(number);
  }
}
