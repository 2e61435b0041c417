#include "front/driver.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <new>
#include <ostream>
#include <string>

#include "cache/parse_input.h"
#include "front/arguments.h"
#include "front/cmdline_ctx.h"
#include "front/disk_options.h"
#include "front/host_info.h"
#include "front/option_table.h"
#include "front/path_match.h"
#include "front/portdir/stdin_stream_ex.h"
#include "front/run_header.h"
#include "front/usage.h"
#include "gate/licence_gate.h"
#include "media/disk_chain_check.h"
#include "opts/cmd_opts.h"
#include "text/line_sink.h"
#include "text/path_text.h"
#include "text/zk_wide.h"
#include "time/zk_time.h"
#include "uni/console.h"
#include "uni/fileio.h"
#include "uni/fileio_output.h"

namespace {

// Standard output, or the results file with its buffered stream.
class results_stream {
 public:
  // False, with a message, if the results file can't be opened.
  bool open(const cmd_opts& opts) {
    if (opts.out_path.empty()) return true;
    uni::fileio_output* const output =
        file.open(opts.out_path, uni::fileio::access::write_truncated) ? file.attach_output()
                                                                       : nullptr;
    if (!output) {
      std::fprintf(stderr, "prob opening results file: %s for writing\n", opts.out_path.c_str());
      return false;
    }
    stream = output;
    sink = output;
    return true;
  }

  std::ostream& out() { return *stream; }
  zk::line_sink& rows() { return *sink; }
  int descriptor() const { return file.is_open() ? file.descriptor() : STDOUT_FILENO; }

 private:
  uni::fileio file;
  uni::stream_sink standard_output{std::cout};
  std::ostream* stream = &std::cout;
  zk::line_sink* sink = &standard_output;
};

int ignore_signal(const std::string&) {
  return 0;
}

bool wants_help(const argument_list& args) {
  for (const char* word : {"-h", "-help", "/?", "--help"}) {
    if (has_option(word, args, 0)) return true;
  }
  return args.size() == 1;
}

int show_help(const argument_list& args) {
  print_usage(args.empty() ? "" : args[0]);
  return run_done;
}

void take_locale(argument_list& args, cmd_opts& opts) {
  opts.any_signature = true;
  opts.use_locale = take_flag("-locale", args);
  if (!opts.use_locale) return;
  const std::string name = opts.dates.emplace().locale_name();
  const std::string shown = name.empty() ? "en_US date format" : "date format: " + name;
  std::cout << "Using locale " << shown << "\n" << std::flush;
}

// Parses one input. False too if there isn't the memory for its rows.
bool parse_guarded(zk::line_sink& out, cmd_opts& opts) {
  try {
    return parse_input(out, opts);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

int parse_one_input(zk::line_sink& out, cmd_opts& opts) {
  if (parse_guarded(out, opts)) return run_done;
  uni::message("probs parsing file: %s\n", opts.input_path.c_str());
  return run_failed;
}

int run_partition(zk::line_sink& out, cmd_opts& opts) {
  if (!licence_gate::allows_option("-partition")) return run_failed;
  // Deliberate: nothing sets this, so the option is refused in every run.
  if (!opts.admin_rights) {
    uni::message("re-run [-partition] option w/ admin privileges\n");
    return run_failed;
  }
  return parse_one_input(out, opts);
}

int run_disk(argument_list& args, zk::line_sink& out, cmd_opts& opts) {
  if (!licence_gate::allows_option("-vmdk")) return run_failed;
  if (!parse_vmdk_options(opts, args, disk_chain_check, nullptr, true, "-vmdk")) return run_failed;
  for (const std::wstring& path : opts.vmdk_paths) licence_gate::see_file(zk::wide_to_utf8(path));
  return parse_one_input(out, opts);
}

int run_file(zk::line_sink& out, cmd_opts& opts) {
  opts.input_path = expand_env(opts.input_path, true);
  licence_gate::see_file(opts.input_path);
  return parse_one_input(out, opts);
}

int run_list(zk::line_sink& out, cmd_opts& opts) {
  zkportdir::stdin_stream_ex paths;
  if (!opts.pipe && !paths.open_walk(opts.enumdir_path, opts.num_subdirs, opts.filters)) {
    return run_done;
  }
  std::string path;
  std::string folder;
  std::string name;
  bool unreadable = false;  // set by filter_match, which doesn't take such a file
  while (paths.getline(path, true)) {
    file_stat stat;  // not loaded, so that each path's file is asked anew
    if (!filter_match(opts, unreadable, path, opts.filters, &stat)) continue;
    opts.diag_printf("%s", path.c_str());
    path = expand_env(path, true);
    if (!split_path(path, folder, name)) continue;
    licence_gate::see_file(path);
    opts.input_path = path;
    if (!parse_guarded(out, opts)) uni::message("probs parsing file: %s\n", path.c_str());
  }
  return run_done;
}

// Exactly one mode runs: the first whose option is there.
int run_mode(argument_list& args, zk::line_sink& out, cmd_opts& opts) {
  if (take_option("-partition", opts.partition_path, args)) return run_partition(out, opts);
  std::string disk;
  if (get_option_value("-vmdk", disk, args, 1)) return run_disk(args, out, opts);
  if (take_option("-f", opts.input_path, args)) return run_file(out, opts);
  if (opts.pipe || opts.enumdir) return run_list(out, opts);
  return show_help(args);
}

int run_steps(int argc, const char* const* argv) {
  // Locals are destroyed in reverse order: `context` after the results.
  argument_list args = make_argument_list(argc, argv);
  cmdline_ctx context;
  cmd_opts opts;
  opts.launch_time.set_now();
  if (args.empty()) return run_failed;
  if (wants_help(args)) return show_help(args);
  if (!licence_gate::allows_run()) {
    std::fputs("this run isn't licensed\n", stderr);
    return run_failed;
  }

  const std::string run_header = make_run_header(args, opts.launch_time);
  licence_gate::see_file(probe_exe_path());
  opts.pipe_ungated = true;
  if (!parse_options(opts, args)) {
    std::cout << run_header << std::endl;
    return run_failed;
  }
  context.configure(opts, ignore_signal);
  results_stream results;
  if (!results.open(opts)) return run_failed;
  opts.results_fd = results.descriptor();
  results.out() << run_header << std::endl;
  take_locale(args, opts);
  return run_mode(args, results.rows(), opts);
}

}  // namespace

int run(int argc, const char* const* argv) {
  uni::fill_standard_streams();
  try {
    return run_steps(argc, argv);
  } catch (const std::bad_alloc&) {
    // Whatever the run had opened is closed by now, and its results written.
    std::fputs("out of memory\n", stderr);
    return run_failed;
  }
}
