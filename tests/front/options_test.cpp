// The arguments, the option table, and the host's texts, as cases.txt tells.
#include <map>
#include <ostream>
#include <sstream>

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

text shown(const std::map<text, text>& map) {
  text out;
  for (const auto& [key, value] : map) out += "[" + key + "]" + value;
  return out;
}

// What options may change that isn't merely stored.
strings fields_of(const cmd_opts& o) {
  return {"date_format=" + o.date_format,
          "time_format=" + o.time_format,
          "separator=" + o.csv_separator,
          "diag_level=" + joined(o.diag_level),
          "signal=" + o.signal_name,
          "skip_filters=" + joined(o.skip_filters.size()),
          "start=" + joined(o.start_time_set, o.start_filetime, o.start_unix),
          "stop=" + joined(o.stop_time_set, o.stop_filetime, o.stop_unix),
          "aliases=" + shown(o.aliases),
          "alias_paths=" + shown(o.alias_paths)};
}

CASES(front, arguments) {
  argument_list args = c.inputs;
  const int at = number<int>(c["at"]);
  const bool found = has_option(c["name"], args, static_cast<uint8_t>(at));
  text line = "old";
  drop_argument(at, args);
  make_cmdline(line, args, '\'');
  return joined(found, line);
}

TEST(Arguments, NullBecomesEmptyAndNoneIsRefused) {
  const char* const argv[] = {"udx", nullptr};
  EXPECT_EQ(make_argument_list(2, argv), (argument_list{"udx", ""}));
  argument_list none;
  cmd_opts opts;
  EXPECT_FALSE(parse_options(opts, none));
}

CASES(front, option) {
  setenv("UDX_DIR", "/d", 1);
  argument_list args = c.inputs;
  args.insert(args.begin(), "/usr/bin/udx.bin");
  cmd_opts opts;
  const strings before = fields_of(opts);
  testing::internal::CaptureStderr();
  const bool result = parse_options(opts, args);
  text seen = testing::internal::GetCapturedStderr() + (result ? "" : "failed ");
  for (size_t i = 1; i < args.size(); ++i) seen += "left=" + args[i] + " ";
  const strings after = fields_of(opts);
  for (size_t i = 0; i < after.size(); ++i) seen += after[i] == before[i] ? "" : after[i] + " ";
  EXPECT_EQ(opts.prog_name, "udx");
  return seen.substr(0, seen.find_last_not_of(' ') + 1);
}

CASES(front, disks) {
  const auto check = [&](const auto&, std::ostream& out, auto& suggested) {
    out << c["said"];
    for (const char letter : c["suggested"]) suggested.emplace_back(1, letter);
    return c["said"].empty();
  };
  cmd_opts opts;
  argument_list args = c.inputs;
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

CASES(front, host) {
  host_info info;
  host_info_read(info, c["program"]);
  EXPECT_TRUE(info.ok);
  info.system = "L;x";
  info.version = ";1";
  info.release = "6";
  info.node = "n";
  info.is_64_bit = c["bits"] == "64";
  std::ostringstream out("old");
  host_info_write(info, out, c["separator"], "_", c["node"] == "yes", c["stem"] == "yes");
  return out.str();
}

CASES(front, version) {
  const temp_dir dir;
  cmd_opts o;
  read_system_version(o, dir.write("v", c[0]).c_str());
  return joined(o.os_product_version, o.os_version_major, o.os_version_minor, o.os_version_patch);
}

}  // namespace
