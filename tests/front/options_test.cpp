// The arguments, the option table, and the host's texts, as cases.txt tells.
#include <algorithm>
#include <map>
#include <ostream>
#include <sstream>
#include <utility>

#include "front/arguments.h"
#include "front/cmdline_ctx.h"
#include "front/disk_options.h"
#include "front/host_info.h"
#include "front/option_actions.h"
#include "front/option_table.h"
#include "opts/cmd_opts.h"
#include "tests/support/check_cases.h"
#include "tests/support/temp_dir.h"

namespace {

using text = std::string;

text shown(const auto& value) {
  return joined(value);
}

text shown(const std::map<text, text>& map) {
  text out;
  for (const auto& [key, value] : map) out += "[" + key + "]" + value;
  return out;
}

struct shown_opts : cmd_opts {
  // What each option may change, as name=value, without most of what is only stored.
  strings fields() const {
#define NAMES_AND_TEXTS(...) cells(#__VA_ARGS__, ' '), texts(__VA_ARGS__)
    const auto texts = [](const auto&... values) { return strings{shown(values)...}; };
    const auto [names, values] = std::pair(NAMES_AND_TEXTS(
        out_path, out_dir, date_format, time_format, csv_separator, delim_char, delim_subst,
        field_trim, field_pad, base16, threads, out_dir_set, out_path_set, mode_xml, mode_csv,
        mode_csvl2t, mode_csvgen, mode_bodyfile, mode_multiline, verbose, show_progress,
        pair_datetime, header_pending, diag_on, diag_level, profile, signal_name, pipe,
        filters.size(), skip_filters.size(), enumdir, enumdir_path, num_subdirs, start_time_set,
        stop_time_set, start_filetime, stop_filetime, start_unix, stop_unix, aliases, alias_paths));
    strings found;
    for (size_t i = 0; i < names.size(); ++i) {
      found.push_back(names[i].substr(0, names[i].find(',')) + "=" + values[i]);
    }
    return found;
  }
};

// The fields that aren't among the others, behind what is `ahead` of them.
text listed(text ahead, const strings& fields, const strings& others) {
  for (const text& field : fields) {
    if (std::find(others.begin(), others.end(), field) == others.end()) ahead += field + " ";
  }
  return ahead.substr(0, ahead.find_last_not_of(' ') + 1);
}

CASES(front, arguments, 2, any_number) {
  argument_list args(c.begin() + 2, c.end());
  const int at = number<int>(c[0]);
  const bool found = has_option(c[1], args, static_cast<uint8_t>(at));
  text line = "old";
  drop_argument(at, args);
  make_cmdline(line, args, '\'');
  return joined(found, line);
}

TEST(Arguments, NullBecomesEmpty) {
  const char* const argv[] = {"udx", nullptr};
  EXPECT_EQ(make_argument_list(2, argv), (argument_list{"udx", ""}));
}

CASES(front, option, 0, any_number) {
  setenv("UDX_DIR", "/d", 1);
  argument_list args = c;
  args.insert(args.begin(), "/usr/bin/udx.bin");
  shown_opts with;
  testing::internal::CaptureStderr();
  const bool result = parse_options(with, args);
  text seen = testing::internal::GetCapturedStderr() + (result ? "" : "failed ");
  for (size_t i = 1; i < args.size(); ++i) seen += "left=" + args[i] + " ";
  EXPECT_EQ(with.prog_name, "udx");
  return listed(seen, with.fields(), shown_opts().fields());
}

TEST(Options, OfNoArguments) {
  argument_list none;
  cmd_opts opts;
  EXPECT_FALSE(parse_options(opts, none));
}

CASES(front, disks, 2, any_number) {
  const auto check = [&](const auto&, std::ostream& out, auto& suggested) {
    out << c[0];
    for (const char letter : c[1]) suggested.emplace_back(1, letter);
    return c[0].empty();
  };
  cmd_opts opts;
  argument_list args(c.begin() + 2, c.end());
  testing::internal::CaptureStderr();
  const bool result = parse_vmdk_options(opts, args, check, nullptr, true, "-vmdk");
  text seen = testing::internal::GetCapturedStderr() + (result ? "taken " : "refused ");
  for (const std::wstring& path : opts.vmdk_paths) {
    seen += "[" + text(path.begin(), path.end()) + "]";
  }
  return seen + std::to_string(opts.vmdk_offset);
}

text signal_text;

TEST(Options, SignalsTextGoesToItsHook) {
  cmd_opts opts;
  opts.show_progress = false;
  opts.signal_name = "S";
  const auto hook = [](const text& given) {
    signal_text = given;
    return 0;
  };
  {
    cmdline_ctx context;
    context.configure(opts, hook);
    EXPECT_EQ(signal_text, "");
  }
  EXPECT_EQ(signal_text, "S");
}

CASES(front, host, 5) {
  host_info info;
  host_info_read(info, c[1]);
  EXPECT_TRUE(info.ok);
  info.system = "L;x";
  info.version = ";1";
  info.release = "6";
  info.node = "n";
  info.is_64_bit = c[2] == "64";
  std::ostringstream out("old");
  host_info_write(info, out, c[0], "_", c[3] == "node", c[4] == "stem");
  return out.str();
}

CASES(front, version, 1) {
  const temp_dir dir;
  cmd_opts o;
  read_system_version(o, dir.write("v", c[0]).c_str());
  return joined(o.os_product_version, o.os_version_major, o.os_version_minor, o.os_version_patch);
}

}  // namespace
