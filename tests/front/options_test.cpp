// The option table: what each option sets, which of two wins, what is refused.
#include <gtest/gtest.h>

#include <sstream>

#include "front/arguments.h"
#include "front/cmd_opts.h"
#include "front/host_info.h"
#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"

namespace {

using text = std::string;

struct parsed {
  cmd_opts opts;
  argument_list left;  // what the options left in the list
  bool result = false;
  text err;

  explicit parsed(argument_list args) : left(std::move(args)) {
    left.insert(left.begin(), "/usr/bin/udx.bin");
    testing::internal::CaptureStderr();
    result = opts.parse_options(left);
    err = testing::internal::GetCapturedStderr();
    left.erase(left.begin());
  }
};

TEST(Arguments, DropAndJoin) {
  argument_list args = {"udx", "", "-last"};
  text value = "old";
  EXPECT_TRUE(has_option("-LAST", args, 1) && !has_option("udx", args, 1) &&
              !has_option("-", args, 0));
  drop_argument(99, args);
  drop_argument(-1, args);
  EXPECT_EQ(args, (argument_list{"udx", "", "-last"}));
  make_cmdline(value, {"u d x", "", "it's", "a b"}, '\'');
  EXPECT_EQ(value, "'u d x'  it's 'a b'");
  const char* const argv[] = {"udx", nullptr};
  EXPECT_EQ(make_argument_list(2, argv), (argument_list{"udx", ""}));
}

// What the options changed, as `name=value` and blanks, behind the messages and "failed".
text changes(const argument_list& args) {
  static const parsed plain({});
  const parsed with(args);
  const cmd_opts &o = with.opts, &p = plain.opts;
  text seen = with.err + (with.result ? "" : "failed ") +
              (with.left.empty() ? "" : "left=" + with.left[0] + " ");
  const auto show = [&](const char* name, const auto& value, const auto& before) {
    if (value != before) seen += name + joined("", value).replace(0, 1, "=") + " ";
  };
  const auto show_map = [&](const char* name, const std::map<text, text>& map) {
    for (const auto& [key, value] : map) seen += text(name) + "[" + key + "]=" + value + " ";
  };
#define SHOW(name) show(#name, o.name, p.name)
  SHOW(out_path), SHOW(out_dir), SHOW(username), SHOW(hostname), SHOW(date_format),
      SHOW(time_format);
  SHOW(csv_separator), SHOW(delim_char), SHOW(delim_subst), SHOW(field_trim), SHOW(field_pad),
      SHOW(base16);
  SHOW(username_set), SHOW(hostname_set), SHOW(split_pathfile), SHOW(gzip_out), SHOW(gzip_mode),
      SHOW(zlib_mode);
  SHOW(zlibex_mode), SHOW(zlibex_value), SHOW(threads), SHOW(out_dir_set), SHOW(out_path_set),
      SHOW(cpuinst), SHOW(cpu);
  SHOW(separate_files), SHOW(fragment_files), SHOW(mode_xml), SHOW(mode_csv), SHOW(mode_csvl2t),
      SHOW(mode_csvgen);
  SHOW(mode_bodyfile), SHOW(mode_multiline), SHOW(verbose), SHOW(show_progress),
      SHOW(pair_datetime);
  SHOW(header_pending), SHOW(diag_on), SHOW(diag_level), SHOW(profile), SHOW(signal_name),
      SHOW(pipe);
  SHOW(filters.size()), SHOW(skip_filters.size()), SHOW(enumdir), SHOW(enumdir_path),
      SHOW(num_subdirs);
  SHOW(start_time_set), SHOW(stop_time_set), SHOW(start_filetime), SHOW(stop_filetime),
      SHOW(start_unix);
  SHOW(stop_unix), show_map("aliases", o.aliases), show_map("alias_paths", o.alias_paths);
  return seen.substr(0, seen.find_last_not_of(' ') + 1);
}

TEST(Options, WhatEachChanges) {
  setenv("UDX_DIR", "/d", 1);
  check_cases("front/option", changes);
  const parsed none({"-unknown", "-csv_separator"});
  const cmd_opts& o = none.opts;
  EXPECT_TRUE(none.result && none.left.size() == 2u && o.prog_name == "udx");
  EXPECT_EQ(joined(o.csv_separator, o.delim_char, o.delim_subst, o.header_pending, o.field_trim,
                   o.field_pad, o.base16, o.show_progress, o.verbose, o.cpuinst),
            ",|;| |true|false|true|true|true|true|-1");
  argument_list empty;
  EXPECT_FALSE(cmd_opts().parse_options(empty));
  cmd_opts quoted;
  quoted.quoted_csv_fields = true;
  quoted.set_separator("tab", true);
  EXPECT_EQ(quoted.csv_separator, "tab");
  quoted.quoted_csv_fields = false;
  quoted.set_separator(",", true);
  EXPECT_EQ(quoted.delim_subst, ';');
  const temp_dir dir;
  {
    parsed with({"-l3", "-diags", dir.path("d"), "-l2"});
    EXPECT_TRUE(with.opts.diag_level == 2 && with.left == argument_list{"-l3"});
    with.opts.diag_printf("%s", text(300, 'x').c_str());  // cut at what its format leaves
    with.opts.diag_printf("%d-%d", 1, 2);
  }
  EXPECT_EQ(read_file(dir.path("d")), "->/usr/bin/udx.bin -l3 -diags " + dir.path("d") +
                                          " -l2\n->" + text(257, 'x') + "\n->1-2\n");
}

TEST(Options, DiskLists) {
  const auto run = [](argument_list args, bool accepted, const std::vector<std::wstring>& suggest) {
    cmd_opts opts;
    const cmd_params::disk_list_check check = [&](const auto&, std::ostream& out, auto& suggested) {
      out << "why\n";
      suggested = suggest;
      return accepted;
    };
    testing::internal::CaptureStderr();
    const bool result = opts.parse_vmdk_options(args, check, nullptr, true, "-vmdk");
    text seen = testing::internal::GetCapturedStderr() + (result ? "+" : "-");
    for (const std::wstring& path : opts.vmdk_paths)
      seen += "[" + text(path.begin(), path.end()) + "]";
    return seen + std::to_string(opts.vmdk_offset);
  };
  EXPECT_EQ(run({}, true, {}) + run({"udx"}, false, {}), "-0+0");
  EXPECT_EQ(run({"udx", "-vmdk", " a | b,c;d ", "-offset", "0x10", "-vmdk", "e|f"}, true, {}),
            "+[a][b][c][d][e|f]16");
  EXPECT_EQ(run({"udx", "-vmdk", "a"}, false, {}), "why\n\n-[a]0");
  EXPECT_EQ(run({"udx", "-vmdk", "a"}, false, {L"a", L"b"}),
            "why\n\nsuggested array: -vmdk \"a | b\"\n-[a]0");
}

TEST(Host, ProbesAndVersionFile) {
  host_info info;
  host_info_read(info, "/opt/UDX_x64");
  EXPECT_TRUE(info.ok && info.stem == "UDX" && probe_exe_path().starts_with('/'));
  info.system = "L;x", info.version = "#1", info.release = "6", info.node = "n",
  info.is_64_bit = false;
  std::ostringstream out("old");
  host_info_write(info, out, ";", "_", false, false);
  EXPECT_EQ(out.str(), "L_x;#1;6;32");
  host_info_write(info, out, ";", "_", true, true);
  EXPECT_EQ(out.str(), "L_x;n;#1;6;32;udx");
  const temp_dir dir;
  cmd_opts o;
  read_system_version(
      o, dir.write("v", "<key>ProductVersion</key>\n<string>10.15.7</string>").c_str());
  EXPECT_EQ(o.os_product_version, "10.15.7");
  EXPECT_EQ(o.os_version_major * 10000 + o.os_version_minor * 100 + o.os_version_patch, 101507);
}

}  // namespace
