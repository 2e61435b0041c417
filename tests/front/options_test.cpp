// The option table: what each option sets, which of two wins, what is refused.
#include <gtest/gtest.h>

#include <sstream>

#include "front/arguments.h"
#include "front/cmd_opts.h"
#include "front/host_info.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::filetime_of;
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

// clang-format off

TEST(Arguments, FindTakeAndJoin) {
  argument_list args = {"udx", "-A", "1", "-b", "-A", "2", "", "-last"};
  text value = "old";
  EXPECT_TRUE(has_option("-a", args, 1) && !has_option("-a", args, 5) && !has_option("-", args, 0));
  EXPECT_TRUE(get_option_value("-a", value, args, 2) && value == "2");
  EXPECT_FALSE(get_option_value("-last", value, args, 0) || take_option("-last", value, args));
  EXPECT_TRUE(take_option("-A", value, args) && value == "1");
  EXPECT_TRUE(take_flag("-B", args, true) && take_flag("-B", args) && !take_flag("-B", args));
  drop_argument(99, args);
  drop_argument(-1, args);
  EXPECT_EQ(args, (argument_list{"udx", "-A", "2", "", "-last"}));
  make_cmdline(value, {"u d x", "", "it's", "a b"}, '\'');
  EXPECT_EQ(value, "'u d x'  it's 'a b'");
  const char* const argv[] = {"udx", nullptr};
  EXPECT_EQ(make_argument_list(2, argv), (argument_list{"udx", ""}));
}

#define HOLDS(condition) [](const cmd_opts& o) { return condition; }

TEST(Options, EachSetsItsField) {
  struct field_case { argument_list args; bool (*holds)(const cmd_opts&); };
  setenv("UDX_DIR", "/d", 1);
  for (const auto& c : std::vector<field_case>{
           {{"-pair_datetime"}, HOLDS(o.pair_datetime)}, {{"-gzip"}, HOLDS(o.gzip_out && o.gzip_mode)},
           {{"-zlib"}, HOLDS(o.gzip_out && o.zlib_mode)}, {{"-threads", "0x10"}, HOLDS(o.threads == 16)},
           {{"-zlibex", "9"}, HOLDS(o.gzip_out && o.zlibex_mode && o.zlibex_value == "9")},
           {{"-signal", "S"}, HOLDS(o.signal_name == "S")}, {{"-hostname", "H"}, HOLDS(o.hostname_set && o.hostname == "H")},
           {{"-username", "U"}, HOLDS(o.username_set && o.username == "U")}, {{"-split_pathfile"}, HOLDS(o.split_pathfile)},
           {{"-cpuinst", "-3"}, HOLDS(o.cpuinst == -3)}, {{"-cpuinst", "none"}, HOLDS(o.cpuinst == 0)},
           {{"-cpu", "2"}, HOLDS(o.cpu == 2)}, {{"-fragment_files", "5"}, HOLDS(o.fragment_files == 5 && o.separate_files)},
           {{"-separate_files"}, HOLDS(o.separate_files)}, {{"-outdir", "%UDX_DIR%/o"}, HOLDS(o.out_dir_set && o.out_dir == "/d/o")},
           {{"-enumdir", "%UDX_DIR%"}, HOLDS(o.enumdir && o.enumdir_path == "/d")}, {{"-profile"}, HOLDS(o.profile)},
           {{"-num_subdirs", "-1"}, HOLDS(o.num_subdirs == 4294967295)}, {{"-num_subdirs", "many"}, HOLDS(o.num_subdirs == 0)},
           {{"-pipe"}, HOLDS(o.pipe)}, {{"-base10"}, HOLDS(!o.base16)}, {{"-base10", "-base16"}, HOLDS(o.base16)},
           {{"-quiet"}, HOLDS(!o.show_progress)}, {{"-verbose"}, HOLDS(o.verbose)}, {{"-v"}, HOLDS(o.verbose)},
           {{"-dateformat", "YYYY/MM/DD"}, HOLDS(o.date_format == "yyyy/mm/dd")},
           {{"-timeformat", "HH:MM:SS"}, HOLDS(o.time_format == "hh:mm:ss")},
           {{"-alias", "A|b|%UDX_DIR%|d| a | z"}, HOLDS(o.aliases.size() == 2 && o.aliases.at("a") == "b" && o.aliases.at("/d") == "d")},
           {{"-aliaspath", "one"}, HOLDS(o.alias_paths.at("*") == "one")}, {{"-aliaspath", "A/|\"b\"/"}, HOLDS(o.alias_paths.at("a") == "b")},
           {{"-filter_skip", "a,b", "-filter_skip", "c"}, HOLDS(o.skip_filters.size() == 3 && o.filters.empty())}}) {
    const parsed with(c.args);
    EXPECT_TRUE(with.result && c.holds(with.opts) && with.left.empty()) << c.args[0];
  }
  const parsed none({"-unknown", "-csv_separator"});
  EXPECT_TRUE(none.result && none.left.size() == 2u && none.opts.prog_name == "udx");
  EXPECT_EQ(parsed({"-signal", "-csv", "x"}).opts.signal_name, "x");  // the table's order
  const cmd_opts forms = std::move(parsed({"-csvgen", "-csvl2t", "-csv", "-xml"}).opts);
  EXPECT_TRUE(forms.mode_csvgen && forms.mode_xml);
  EXPECT_FALSE(forms.mode_csv || forms.mode_csvl2t || forms.mode_bodyfile || forms.mode_multiline);
  argument_list empty;
  EXPECT_FALSE(cmd_opts().parse_options(empty));
}

TEST(Options, OutputFormsAndSeparators) {
  struct form_case { argument_list args; text separator; char delim, subst; bool header, trim, pad; };
  for (const auto& c : std::vector<form_case>{
           {{}, ",", ';', ' ', true, false, true}, {{"-csv"}, ",", ',', ' ', true, true, true},
           {{"-csv", "-pair_datetime"}, ",", ',', ' ', true, false, true}, {{"-csvgen"}, ",", ',', ' ', true, true, true},
           {{"-csvl2t"}, ",", ',', ' ', true, false, true}, {{"-bodyfile", "-csv"}, "|", '|', ';', true, true, true},
           {{"-xml"}, "", 0, 0, false, false, true}, {{"-xml", "-multiline"}, "", 0, 0, true, false, true},
           {{"-xml", "-bodyfile"}, "", 0, 0, false, false, true}, {{"-csv_separator", "TAB"}, "\t", 0, 0, true, false, true},
           {{"-csv_separator", "\\T"}, "\t", 0, 0, true, false, true}, {{"-csv_separator", "--"}, "--", 0, 0, true, false, true},
           {{"-csv_separator", " | ", "-no_whitespace"}, "|", '|', ';', true, true, false},
           {{"-csv_separator", " ; ", "-enable_quoted_csv_fields"}, ";", 0, 0, true, false, false},
           {{"-csv_separator", " \t", "-enable_quoted_csv_fields"}, " \t", 0, 0, true, false, false}}) {
    const cmd_opts o = std::move(parsed(c.args).opts);
    EXPECT_EQ(o.csv_separator, c.separator);
    EXPECT_EQ(text({o.delim_char, o.delim_subst}), text({c.delim, c.subst})) << c.separator;
    EXPECT_EQ(o.header_pending * 4 + o.field_trim * 2 + o.field_pad, c.header * 4 + c.trim * 2 + c.pad) << c.separator;
  }
  cmd_opts quoted;
  quoted.quoted_csv_fields = true;
  quoted.set_separator("tab", true);
  EXPECT_EQ(quoted.csv_separator, "tab");
  quoted.quoted_csv_fields = false;
  quoted.set_separator(",", true);
  EXPECT_EQ(quoted.delim_subst, ';');
}

TEST(Options, TimeSpan) {
  const text bad_start = "invalid start time, ignoring\n", bad_stop = "invalid stop time, ignoring\n";
  constexpr uint64_t open = ~uint64_t{0};
  const uint64_t stop = filetime_of(2020, 1, 31) + (2020ULL * 60 + 5) * 600000000;  // 2020 hours on
  struct span_case { argument_list args; bool result; text err; uint64_t start, stop; };  // 0 for none
  for (const auto& c : std::vector<span_case>{
           {{"-cmd_start_time", "2020/01/31"}, true, "", filetime_of(2020, 1, 31), open},
           {{"-cmd_start_time", "2020-1-5 1:02:03"}, true, "", filetime_of(2020, 1, 5, 1, 2, 3), open},
           {{"-cmd_start_time", "2020-13-5"}, true, bad_start, 0, 0}, {{"-cmd_start_time", "1850-1-5"}, true, bad_start, 0, 0},
           {{"-cmd_start_time", "2020-1-5 noon"}, true, bad_start, 0, 0}, {{"-cmd_start_time", "yesterday"}, false, "", 0, 0},
           {{"-cmd_start_time", ""}, false, "", 0, 0}, {{"-cmd_start_time", " 2020-1-5"}, false, "", 0, 0},
           {{"-cmd_stop_time", "2020-01-31"}, true, bad_stop, 0, 0}, {{"-cmd_stop_time", "2020-01-31 5:00"}, true, bad_stop, 0, 0},
           {{"-cmd_stop_time", "2020-01-31:5"}, true, "", 0, stop},
           {{"-cmd_start_time", "2021-1-1", "-cmd_stop_time", "2020-01-31:5"}, true, bad_stop, filetime_of(2021, 1, 1), 0},
           {{"-cmd_start_time", "2019-1-1", "-cmd_stop_time", "2020"}, false, "", filetime_of(2019, 1, 1), 0}}) {
    const parsed with(c.args);
    const cmd_opts& o = with.opts;
    EXPECT_EQ(with.result, c.result) << c.args.back();
    EXPECT_EQ(with.err, c.err) << c.args.back();
    EXPECT_EQ(o.start_filetime, c.start) << c.args.back();
    EXPECT_EQ(o.stop_filetime, c.stop) << c.args.back();
    EXPECT_EQ(o.start_time_set * 2 + o.stop_time_set, (c.start != 0) * 2 + (c.stop != 0)) << c.args.back();
    EXPECT_EQ(o.stop_unix, c.stop == open ? 4294967295 : c.stop == 0 ? 0 : 1587701100) << c.args.back();
  }
}

TEST(Options, FailuresAndTheirTexts) {
  const text imbalanced = "imbalanced alias to true pathfiles, aborting\n", nowhere = "prob opening file /nowhere/x for output, aborting\n";
  const auto bad_mask = [](const text& mask) { return "invalid " + mask + ", using default format\n"; };
  struct failure_case { argument_list args; bool result; text err; };
  for (const auto& c : std::vector<failure_case>{
           {{"-sqlite", "db"}, false, "This option is not offered in this build\n"},
           {{"-sqlite_log", "x"}, false, "This option is not offered in this build\n"}, {{"-sqlite"}, true, ""},
           {{"-alias", "one"}, false, imbalanced}, {{"-alias", "a|b|c"}, false, imbalanced}, {{"-aliaspath", "a|"}, false, imbalanced},
           {{"-dateformat", "yy-mm-d"}, true, bad_mask("yy-mm-d")}, {{"-dateformat", "yyyy-m-dd"}, true, bad_mask("yyyy-m-dd")},
           {{"-dateformat", "yyyy-m-d"}, true, ""}, {{"-timeformat", "hh:mm"}, true, bad_mask("hh:mm")},
           {{"-timeformat", "hh-mm-ss.xxx"}, true, bad_mask("hh-mm-ss.xxx")}, {{"-timeformat", "hh:mm:ss."}, true, bad_mask("hh:mm:ss.")},
           {{"-timeformat", "hh:mm:ss.xxxxxxxxxx"}, true, bad_mask("hh:mm:ss.xxxxxxxxxx")}, {{"-timeformat", "hh:mm:ss.xxxxxxxxx"}, true, ""},
           {{"-out", "/nowhere/x"}, false, nowhere}, {{"-out", "\\nowhere\\x", "-append"}, false, nowhere}, {{"-diags", "/nowhere/x"}, true, ""}}) {
    const parsed with(c.args);
    EXPECT_EQ(with.result, c.result) << c.args[0];
    EXPECT_EQ(with.err, c.err) << c.args[0];
  }
  const temp_dir dir;
  {
    parsed with({"-l3", "-diags", dir.path("d"), "-l2"});
    EXPECT_TRUE(with.opts.diag_level == 2 && with.left == argument_list{"-l3"});
    with.opts.diag_printf("%s", text(300, 'x').c_str());  // cut at what its format leaves
    with.opts.diag_printf("%d-%d", 1, 2);
  }
  EXPECT_EQ(read_file(dir.path("d")), "->/usr/bin/udx.bin -l3 -diags " + dir.path("d") + " -l2\n->" + text(257, 'x') + "\n->1-2\n");
}

TEST(Options, DiskLists) {
  const auto run = [](argument_list args, bool accepted, std::vector<std::wstring> suggest) {
    cmd_opts opts;
    const cmd_params::disk_list_check check = [&](const auto&, std::ostream& out, auto& suggested) {
      out << "why\n";
      suggested = suggest;
      return accepted;
    };
    testing::internal::CaptureStderr();
    const bool result = opts.parse_vmdk_options(args, check, nullptr, true, "-vmdk");
    text seen = testing::internal::GetCapturedStderr() + (result ? "+" : "-");
    for (const std::wstring& path : opts.vmdk_paths) seen += "[" + text(path.begin(), path.end()) + "]";
    return seen + std::to_string(opts.vmdk_offset);
  };
  EXPECT_EQ(run({}, true, {}) + run({"udx"}, false, {}), "-0+0");
  EXPECT_EQ(run({"udx", "-vmdk", " a | b,c;d ", "-offset", "0x10", "-vmdk", "e|f"}, true, {}), "+[a][b][c][d][e|f]16");
  EXPECT_EQ(run({"udx", "-vmdk", "a"}, false, {}), "why\n\n-[a]0");
  EXPECT_EQ(run({"udx", "-vmdk", "a"}, false, {L"a", L"b"}), "why\n\nsuggested array: -vmdk \"a | b\"\n-[a]0");
}

TEST(Host, ProbesAndVersionFile) {
  host_info info;
  host_info_read(info, "/opt/UDX_x64");
  EXPECT_TRUE(info.ok && info.stem == "UDX" && probe_exe_path().starts_with('/'));
  info.system = "L;x", info.version = "#1", info.release = "6", info.node = "n", info.is_64_bit = false;
  std::ostringstream out("old");
  host_info_write(info, out, ";", "_", false, false);
  EXPECT_EQ(out.str(), "L_x;#1;6;32");
  host_info_write(info, out, ";", "_", true, true);
  EXPECT_EQ(out.str(), "L_x;n;#1;6;32;udx");
  const temp_dir dir;
  cmd_opts o;
  read_system_version(o, dir.write("v", "<key>ProductVersion</key>\n<string>10.15.7</string>").c_str());
  EXPECT_EQ(o.os_product_version, "10.15.7");
  EXPECT_EQ(o.os_version_major * 10000 + o.os_version_minor * 100 + o.os_version_patch, 101507);
}

}  // namespace
