// The option table: what each option sets, and which of two wins.
#include <gtest/gtest.h>

#include <sstream>

#include "front/arguments.h"
#include "front/cmd_opts.h"
#include "front/host_info.h"
#include "tests/support/temp_dir.h"
#include "tools/index_builder.h"

namespace {

using sample::filetime_of;

struct parsed {
  cmd_opts opts;
  argument_list left;  // what the options left in the list
  bool result = false;
  std::string err;

  explicit parsed(argument_list args) : left(std::move(args)) {
    left.insert(left.begin(), "/usr/bin/udx.bin");
    testing::internal::CaptureStderr();
    result = opts.parse_options(left);
    err = testing::internal::GetCapturedStderr();
    left.erase(left.begin());
  }
};

TEST(Arguments, FindTakeAndJoin) {
  argument_list args = {"udx", "-A", "1", "-b", "-A", "2", "", "-last"};
  std::string value = "old";
  EXPECT_TRUE(has_option("-a", args, 1));
  EXPECT_FALSE(has_option("-a", args, 5));
  EXPECT_FALSE(has_option("-", args, 0));
  EXPECT_TRUE(get_option_value("-a", value, args, 2));
  EXPECT_EQ(value, "2");
  EXPECT_FALSE(get_option_value("-last", value, args, 0));
  EXPECT_FALSE(take_option("-last", value, args));
  EXPECT_TRUE(take_option("-A", value, args));
  EXPECT_EQ(value, "1");
  EXPECT_TRUE(take_flag("-B", args, true));
  EXPECT_TRUE(take_flag("-B", args));
  EXPECT_FALSE(take_flag("-B", args));
  drop_argument(99, args);
  drop_argument(-1, args);
  EXPECT_EQ(args, (argument_list{"udx", "-A", "2", "", "-last"}));
  std::string line = "old";
  make_cmdline(line, {"u d x", "", "it's", "a b"}, '\'');
  EXPECT_EQ(line, "'u d x'  it's 'a b'");
  const char* const argv[] = {"udx", nullptr};
  EXPECT_EQ(make_argument_list(2, argv), (argument_list{"udx", ""}));
}

TEST(Options, EachSetsItsField) {
  const auto flag = [](auto field) { return [=](const cmd_opts& o) { return bool(o.*field); }; };
  const auto text = [](auto field, const char* expected) {
    return [=](const cmd_opts& o) { return o.*field == expected; };
  };
  using p = cmd_params;
  const struct {
    argument_list args;
    std::function<bool(const cmd_opts&)> holds;
  } cases[] = {
      {{"-pair_datetime"}, flag(&p::pair_datetime)},
      {{"-gzip"}, [](const cmd_opts& o) { return o.gzip_out && o.gzip_mode; }},
      {{"-zlib"}, [](const cmd_opts& o) { return o.gzip_out && o.zlib_mode; }},
      {{"-zlibex", "9"},
       [](const cmd_opts& o) { return o.gzip_out && o.zlibex_mode && o.zlibex_value == "9"; }},
      {{"-threads", "0x10"}, [](const cmd_opts& o) { return o.threads == 16; }},
      {{"-signal", "S"}, text(&p::signal_name, "S")},
      {{"-hostname", "H"}, [](const cmd_opts& o) { return o.hostname_set && o.hostname == "H"; }},
      {{"-username", "U"}, [](const cmd_opts& o) { return o.username_set && o.username == "U"; }},
      {{"-split_pathfile"}, flag(&p::split_pathfile)},
      {{"-cpuinst", "-3"}, [](const cmd_opts& o) { return o.cpuinst == -3; }},
      {{"-cpuinst", "none"}, [](const cmd_opts& o) { return o.cpuinst == 0; }},
      {{"-cpu", "2"}, [](const cmd_opts& o) { return o.cpu == 2; }},
      {{"-fragment_files", "5"},
       [](const cmd_opts& o) { return o.fragment_files == 5 && o.separate_files; }},
      {{"-separate_files"}, flag(&p::separate_files)},
      {{"-outdir", "%UDX_DIR%/o"},
       [](const cmd_opts& o) { return o.out_dir_set && o.out_dir == "/d/o"; }},
      {{"-enumdir", "%UDX_DIR%"},
       [](const cmd_opts& o) { return o.enumdir && o.enumdir_path == "/d"; }},
      {{"-num_subdirs", "-1"}, [](const cmd_opts& o) { return o.num_subdirs == 4294967295u; }},
      {{"-num_subdirs", "many"}, [](const cmd_opts& o) { return o.num_subdirs == 0; }},
      {{"-profile"}, flag(&p::profile)},
      {{"-pipe"}, flag(&p::pipe)},
      {{"-base10"}, [](const cmd_opts& o) { return !o.base16; }},
      {{"-base10", "-base16"}, flag(&p::base16)},
      {{"-quiet"}, [](const cmd_opts& o) { return !o.show_progress; }},
      {{"-verbose"}, flag(&p::verbose)},
      {{"-v"}, flag(&p::verbose)},
      {{"-dateformat", "MMM-dd-yy"},
       [](const cmd_opts& o) { return o.date_format == "yyyy-mm-dd"; }},
      {{"-dateformat", "YYYY/MM/DD"}, text(&p::date_format, "yyyy/mm/dd")},
      {{"-timeformat", "HH:MM:SS"}, text(&p::time_format, "hh:mm:ss")},
      {{"-alias", "A|b|%UDX_DIR%|d| a | z"},
       [](const cmd_opts& o) {
         return o.aliases == std::map<std::string, std::string>{{"a", "b"}, {"/d", "d"}};
       }},
      {{"-aliaspath", "one"}, [](const cmd_opts& o) { return o.alias_paths.at("*") == "one"; }},
      {{"-aliaspath", "A/|\"b\"/"}, [](const cmd_opts& o) { return o.alias_paths.at("a") == "b"; }},
      {{"-filter_skip", "a,b", "-filter_skip", "c"},
       [](const cmd_opts& o) { return o.skip_filters.size() == 3 && o.filters.empty(); }},
  };
  setenv("UDX_DIR", "/d", 1);
  for (const auto& c : cases) {
    const parsed with(c.args);
    EXPECT_TRUE(with.result) << c.args[0];
    EXPECT_TRUE(c.holds(with.opts)) << c.args[0];
    EXPECT_EQ(with.left, argument_list{}) << c.args[0];
  }
  const parsed none({"-unknown", "-csv_separator"});
  EXPECT_TRUE(none.result);
  EXPECT_EQ(none.left.size(), 2u);
  EXPECT_EQ(none.opts.prog_name, "udx");
  EXPECT_EQ(none.opts.cmdline, "/usr/bin/udx.bin -unknown -csv_separator");
  EXPECT_EQ(parsed({"-signal", "-csv", "x"}).opts.signal_name, "x");  // the table's order
  argument_list empty;
  EXPECT_FALSE(cmd_opts().parse_options(empty));
}

TEST(Options, OutputFormsAndSeparators) {
  const struct {
    argument_list args;
    std::string separator;
    char delim, subst;
    bool header, trim, pad;
  } cases[] = {
      {{}, ",", ';', ' ', true, false, true},
      {{"-csv"}, ",", ',', ' ', true, true, true},
      {{"-csv", "-pair_datetime"}, ",", ',', ' ', true, false, true},
      {{"-csvgen"}, ",", ',', ' ', true, true, true},
      {{"-csvl2t"}, ",", ',', ' ', true, false, true},
      {{"-bodyfile", "-csv"}, "|", '|', ';', true, true, true},
      {{"-xml"}, "", 0, 0, false, false, true},
      {{"-xml", "-multiline"}, "", 0, 0, true, false, true},
      {{"-xml", "-bodyfile"}, "", 0, 0, false, false, true},
      {{"-csv_separator", "TAB"}, "\t", 0, 0, true, false, true},
      {{"-csv_separator", "\\T"}, "\t", 0, 0, true, false, true},
      {{"-csv_separator", " | "}, " | ", '|', ';', true, false, true},
      {{"-csv_separator", "--"}, "--", 0, 0, true, false, true},
      {{"-csv_separator", " | ", "-no_whitespace"}, "|", '|', ';', true, true, false},
      {{"-csv_separator", " ; ", "-enable_quoted_csv_fields"}, ";", 0, 0, true, false, false},
      {{"-csv_separator", " \t", "-enable_quoted_csv_fields"}, " \t", 0, 0, true, false, false},
  };
  for (const auto& c : cases) {
    const parsed with(c.args);
    const std::string name = c.args.empty() ? "none" : c.args.back();
    EXPECT_EQ(with.opts.csv_separator, c.separator) << name;
    EXPECT_EQ(with.opts.delim_char, c.delim) << name;
    EXPECT_EQ(with.opts.delim_subst, c.subst) << name;
    EXPECT_EQ(with.opts.header_pending, c.header) << name;
    EXPECT_EQ(with.opts.field_trim, c.trim) << name;
    EXPECT_EQ(with.opts.field_pad, c.pad) << name;
  }
  const cmd_opts last = std::move(parsed({"-csvgen", "-csvl2t", "-csv", "-xml"}).opts);
  EXPECT_TRUE(last.mode_csvgen && last.mode_xml);
  EXPECT_FALSE(last.mode_csv || last.mode_csvl2t || last.mode_bodyfile || last.mode_multiline);
  cmd_opts quoted;
  quoted.quoted_csv_fields = true;
  quoted.set_separator("tab", true);
  EXPECT_EQ(quoted.csv_separator, "tab");
  quoted.quoted_csv_fields = false;
  quoted.set_separator(",", true);
  EXPECT_EQ(quoted.delim_subst, ';');
}

TEST(Options, TimeSpan) {
  const std::string bad_start = "invalid start time, ignoring\n";
  const std::string bad_stop = "invalid stop time, ignoring\n";
  constexpr uint64_t open = ~uint64_t{0};
  const struct {
    argument_list args;
    bool result;
    std::string err;
    uint64_t start, stop;  // 0 for none
  } cases[] = {
      {{"-cmd_start_time", "2020/01/31"}, true, "", filetime_of(2020, 1, 31), open},
      {{"-cmd_start_time", "2020-1-5 1:02:03"}, true, "", filetime_of(2020, 1, 5, 1, 2, 3), open},
      {{"-cmd_start_time", "2020-13-5"}, true, bad_start, 0, 0},
      {{"-cmd_start_time", "1850-1-5"}, true, bad_start, 0, 0},
      {{"-cmd_start_time", "2020-1-5 noon"}, true, bad_start, 0, 0},
      {{"-cmd_start_time", "yesterday"}, false, "", 0, 0},
      {{"-cmd_start_time", ""}, false, "", 0, 0},
      {{"-cmd_start_time", " 2020-1-5"}, false, "", 0, 0},
      {{"-cmd_stop_time", "2020-01-31"}, true, bad_stop, 0, 0},
      {{"-cmd_stop_time", "2020-01-31 5:00"}, true, bad_stop, 0, 0},
      {{"-cmd_stop_time", "2020-01-31:5"},
       true,
       "",
       0,
       filetime_of(2020, 1, 31) + 2020ULL * 36000000000},
      {{"-cmd_start_time", "2021-1-1", "-cmd_stop_time", "2020-01-31:5"},
       true,
       bad_stop,
       filetime_of(2021, 1, 1),
       0},
      {{"-cmd_start_time", "2019-1-1", "-cmd_stop_time", "2020"},
       false,
       "",
       filetime_of(2019, 1, 1),
       0},
  };
  for (const auto& c : cases) {
    const parsed with(c.args);
    const std::string& value = c.args.back();
    EXPECT_EQ(with.result, c.result) << value;
    EXPECT_EQ(with.err, c.err.empty() ? "" : c.err) << value;
    EXPECT_EQ(with.opts.start_filetime, c.start) << value;
    EXPECT_EQ(with.opts.start_time_set, c.start != 0) << value;
    EXPECT_EQ(with.opts.stop_time_set, c.stop != 0) << value;
    if (c.stop != 0 && c.stop != open) {
      EXPECT_EQ(with.opts.stop_unix, 1580428800u + 2020 * 3600 + 5 * 60) << value;
    }
    if (c.stop == open) {
      EXPECT_EQ(with.opts.stop_unix, 4294967295u);
    }
  }
}

TEST(Options, FailuresAndTheirTexts) {
  const std::string imbalanced = "imbalanced alias to true pathfiles, aborting\n";
  const std::string no_sqlite = "This option is not offered in this build\n";
  const struct {
    argument_list args;
    bool result;
    std::string err;
  } cases[] = {
      {{"-sqlite", "db"}, false, no_sqlite},
      {{"-sqlite_log", "x"}, false, no_sqlite},
      {{"-sqlite"}, true, ""},
      {{"-alias", "one"}, false, imbalanced},
      {{"-alias", "a|b|c"}, false, imbalanced},
      {{"-aliaspath", "a|"}, false, imbalanced},
      {{"-dateformat", "yy-mm-d"}, true, "invalid yy-mm-d, using default format\n"},
      {{"-dateformat", "yyyy-m-d"}, true, ""},
      {{"-timeformat", "hh:mm"}, true, "invalid hh:mm, using default format\n"},
      {{"-timeformat", "hh-mm-ss.xxx"}, true, "invalid hh-mm-ss.xxx, using default format\n"},
      {{"-timeformat", "hh:mm:ss."}, true, "invalid hh:mm:ss., using default format\n"},
      {{"-timeformat", "hh:mm:ss.xxxxxxxxxx"},
       true,
       "invalid hh:mm:ss.xxxxxxxxxx, using default format\n"},
      {{"-timeformat", "hh:mm:ss.xxxxxxxxx"}, true, ""},
      {{"-out", "/nowhere/x"}, false, "prob opening file /nowhere/x for output, aborting\n"},
      {{"-out", "\\nowhere\\x", "-append"},
       false,
       "prob opening file /nowhere/x for output, aborting\n"},
      {{"-diags", "/nowhere/x"}, true, ""},
  };
  for (const auto& c : cases) {
    const parsed with(c.args);
    EXPECT_EQ(with.result, c.result) << c.args[0];
    EXPECT_EQ(with.err, c.err) << c.args[0];
  }
}

TEST(Options, Diagnostics) {
  const temp_dir dir;
  const std::string path = dir.path("diags");
  {
    parsed with({"-l3", "-diags", path, "-l2"});
    EXPECT_EQ(with.opts.diag_level, 2);
    EXPECT_EQ(with.left, argument_list{"-l3"});
    with.opts.diag_printf("%s", std::string(300, 'x').c_str());
    with.opts.diag_printf("%d-%d", 1, 2);
  }
  EXPECT_EQ(read_file(path), "->/usr/bin/udx.bin -l3 -diags " + path + " -l2\n->" +
                                 std::string(257, 'x') + "\n->1-2\n");
  EXPECT_EQ(parsed({"-l2"}).left, argument_list{"-l2"});
}

TEST(Options, DiskLists) {
  const auto run = [](argument_list args, bool accepted, std::vector<std::wstring> suggest) {
    cmd_opts opts;
    testing::internal::CaptureStderr();
    const bool result = opts.parse_vmdk_options(
        args,
        [&](const std::vector<std::wstring>&, std::ostream& text, auto& suggested) {
          text << "why\n";
          suggested = suggest;
          return accepted;
        },
        nullptr, true, "-vmdk");
    std::string text = testing::internal::GetCapturedStderr() + (result ? "+" : "-");
    for (const std::wstring& path : opts.vmdk_paths) {
      text += "[" + std::string(path.begin(), path.end()) + "]";
    }
    return text + std::to_string(opts.vmdk_offset);
  };
  EXPECT_EQ(run({}, true, {}), "-0");
  EXPECT_EQ(run({"udx"}, false, {}), "+0");
  EXPECT_EQ(run({"udx", "-vmdk", " a | b,c;d ", "-offset", "0x10", "-vmdk", "e|f"}, true, {}),
            "+[a][b][c][d][e|f]16");
  EXPECT_EQ(run({"udx", "-vmdk", "a"}, false, {}), "why\n\n-[a]0");
  EXPECT_EQ(run({"udx", "-vmdk", "a"}, false, {L"a", L"b"}),
            "why\n\nsuggested array: -vmdk \"a | b\"\n-[a]0");
}

TEST(Host, ProbesAndVersionFile) {
  host_info info;
  host_info_read(info, "/opt/udx_x64");
  EXPECT_TRUE(info.ok);
  EXPECT_EQ(info.stem, "udx");
  EXPECT_EQ(probe_exe_path().find("/"), 0u);
  info.system = "L;x";
  info.version = "#1";
  info.release = "6";
  info.node = "n";
  info.is_64_bit = false;
  std::ostringstream out;
  out << "old";
  host_info_write(info, out, ";", "_", false, false);
  EXPECT_EQ(out.str(), "L_x;#1;6;32");
  info.stem = "UDX";
  host_info_write(info, out, ";", "_", true, true);
  EXPECT_EQ(out.str(), "L_x;n;#1;6;32;udx");

  const temp_dir dir;
  cmd_opts opts;
  const std::string plist = "<key>ProductVersion</key>\n<string>10.15.7</string>";
  read_system_version(opts, dir.write("v", plist).c_str());
  EXPECT_EQ(opts.os_product_version, "10.15.7");
  EXPECT_EQ(opts.os_version_major * 10000 + opts.os_version_minor * 100 + opts.os_version_patch,
            101507);
}

}  // namespace
