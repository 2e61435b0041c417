// The option table, and the loop that treats it.
#include "front/option_table.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

#include "front/arguments.h"
#include "front/filter_text.h"
#include "front/option_actions.h"
#include "gate/licence_gate.h"
#include "opts/cmd_params.h"
#include "text/path_text.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "time/date_format_context.h"

namespace {

using params = cmd_params;
using list = argument_list;

enum class kind { flag, value, repeated_value };

struct option {
  const char* name;
  kind takes;
  bool (*act)(params& p, list& args, const std::string& value);
  const char* other_name = nullptr;  // looked for where the first gave nothing
};

// A flag, and a value, that only set fields.
template <auto... fields>
bool set(params& p, list&, const std::string&) {
  ((p.*fields = true), ...);
  return true;
}

template <auto field>
bool clear(params& p, list&, const std::string&) {
  p.*field = false;
  return true;
}

template <auto field, auto... flags>
bool store_text(params& p, list& args, const std::string& value) {
  p.*field = value;
  return set<flags...>(p, args, value);
}

template <auto field, auto... flags>
bool store_path(params& p, list& args, const std::string& value) {
  p.*field = expand_env(value, true);
  return set<flags...>(p, args, value);
}

// What isn't a number stores 0.
template <auto field, auto... flags>
bool store_number(params& p, list& args, const std::string& value) {
  uint32_t number = 0;
  zk::read_number(value.c_str(), number);
  p.*field = static_cast<std::remove_reference_t<decltype(p.*field)>>(number);
  return set<flags...>(p, args, value);
}

bool use_csv(params& p, list&, const std::string&) {
  clear_output_forms(p);
  p.mode_csv = true;
  p.set_separator(",", false);
  p.field_trim = !p.pair_datetime;
  return true;
}

bool use_csvgen(params& p, list&, const std::string&) {
  clear_output_forms(p);
  p.mode_csvgen = true;
  p.set_separator(",", false);
  p.field_trim = true;
  return true;
}

bool use_csvl2t(params& p, list&, const std::string&) {
  clear_output_forms(p);
  p.mode_csvl2t = p.header_pending = true;
  p.set_separator(",", false);
  return true;
}

bool use_bodyfile(params& p, list&, const std::string&) {
  clear_output_forms(p);
  p.mode_bodyfile = p.header_pending = true;
  p.set_separator("|", false);
  return true;
}

bool use_xml(params& p, list&, const std::string&) {
  clear_output_forms(p);
  p.mode_xml = true;
  p.header_pending = false;
  p.set_separator("", false);
  return true;
}

bool use_multiline(params& p, list&, const std::string&) {
  clear_output_forms(p);
  p.mode_multiline = p.header_pending = true;
  p.csv_separator.clear();
  p.delim_char = p.delim_subst = 0;
  return true;
}

bool refuse_sqlite(params&, list&, const std::string&) {
  std::fputs("This option is not offered in this build\n", stderr);
  return false;
}

bool add_skip_filter(params& p, list& args, const std::string& value) {
  return add_filter(p.skip_filters, args, value);
}

bool add_path_filter(params& p, list& args, const std::string& value) {
  return add_filter(p.filters, args, value);
}

bool add_signature(params& p, list&, const std::string& value) {
  return add_signature_filter(p.filters, value);
}

bool store_separator(params& p, list&, const std::string& value) {
  p.set_separator(value, false);
  return true;
}

bool remove_whitespace(params& p, list&, const std::string&) {
  p.field_trim = true;
  p.field_pad = false;
  zk::remove_char(p.csv_separator, ' ');
  return true;
}

// In the order in which they are treated, whatever their order among the arguments: where two
// conflict, the later one here wins.
constexpr option options[] = {
    {"-pair_datetime", kind::flag, set<&params::pair_datetime>},
    {"-diags", kind::value, open_diags},
    {"-csv", kind::flag, use_csv},
    {"-csvgen", kind::flag, use_csvgen},
    {"-csvl2t", kind::flag, use_csvl2t},
    {"-bodyfile", kind::flag, use_bodyfile},
    {"-xml", kind::flag, use_xml},
    {"-multiline", kind::flag, use_multiline},
    {"-alias", kind::value, add_aliases},
    {"-aliaspath", kind::value, add_alias_paths},
    {"-gzip", kind::flag, set<&params::gzip_out, &params::gzip_mode>},
    {"-zlib", kind::flag, set<&params::gzip_out, &params::zlib_mode>},
    {"-threads", kind::value, store_number<&params::threads>},
    {"-zlibex", kind::value,
     store_text<&params::zlibex_value, &params::gzip_out, &params::zlibex_mode>},
    {"-sqlite_log", kind::value, refuse_sqlite},
    {"-sqlite", kind::value, refuse_sqlite},
    {"-signal", kind::value, store_text<&params::signal_name>},
    {"-hostname", kind::value, store_text<&params::hostname, &params::hostname_set>},
    {"-split_pathfile", kind::flag, set<&params::split_pathfile>},
    {"-username", kind::value, store_text<&params::username, &params::username_set>},
    {"-cpuinst", kind::value, store_number<&params::cpuinst>},
    {"-cpu", kind::value, store_number<&params::cpu>},
    {"-fragment_files", kind::value,
     store_number<&params::fragment_files, &params::separate_files>},
    {"-separate_files", kind::flag, set<&params::separate_files>},
    {"-out", kind::value, set_out_path, "-outfile"},
    {"-outdir", kind::value, store_path<&params::out_dir, &params::out_dir_set>},
    {"-enumdir", kind::value, store_path<&params::enumdir_path, &params::enumdir>},
    {"-num_subdirs", kind::value, store_number<&params::num_subdirs>},
    {"-profile", kind::flag, set<&params::profile>},
    {"-pipe", kind::flag, set<&params::pipe>},
    {"-filter_skip", kind::repeated_value, add_skip_filter},
    {"-filter", kind::repeated_value, add_path_filter},
    {"-filter_sig", kind::repeated_value, add_signature},
    {"-cmd_start_time", kind::value, set_start_time},
    {"-cmd_stop_time", kind::value, set_stop_time},
    {"-base10", kind::flag, clear<&params::base16>},
    {"-base16", kind::flag, set<&params::base16>},
    {"-csv_separator", kind::value, store_separator},
    {"-enable_quoted_csv_fields", kind::flag, enable_quoted_fields},
    {"-no_whitespace", kind::flag, remove_whitespace},
    {"-dateformat", kind::value, set_date_format},
    {"-timeformat", kind::value, set_time_format},
    {"-verbose", kind::flag, set<&params::verbose>, "-v"},
    {"-quiet", kind::flag, clear<&params::show_progress>},
};

// Takes the option, by either name, from the list. False if it isn't there.
bool take(const option& wanted, argument_list& args, std::string& value) {
  for (const char* name : {wanted.name, wanted.other_name}) {
    if (!name) continue;
    if (wanted.takes == kind::flag ? take_flag(name, args) : take_option(name, value, args)) {
      return true;
    }
  }
  return false;
}

bool gate_allows(const params& p, const option& wanted) {
  const bool ungated = p.pipe_ungated && wanted.name == std::string_view("-pipe");
  return ungated || licence_gate::allows_option(wanted.name);
}

// The program's name without its folder and its extension.
std::string program_name(const std::string& path) {
  std::string name = path.substr(path.rfind('/') + 1);  // npos + 1 is 0
  return name.substr(0, name.rfind('.'));
}

}  // namespace

bool parse_options(cmd_params& params, argument_list& args) {
  if (args.empty()) return false;
  if (params.cmdline.empty()) make_cmdline(params.cmdline, args, '"');
  if (params.prog_name.empty()) params.prog_name = program_name(args[0]);
  for (const option& each : options) {
    std::string value;
    while (take(each, args, value)) {
      if (!gate_allows(params, each) || !each.act(params, args, value)) return false;
      if (each.takes != kind::repeated_value) break;
    }
  }
  params.format_masks =
      zk::derive_format_masks(params.date_format, params.time_format, params.pair_datetime);
  read_system_version(params, system_version_file);
  return true;
}
