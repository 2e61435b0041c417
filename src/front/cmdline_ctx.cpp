#include "front/cmdline_ctx.h"

#include <array>
#include <cstdio>

#include "opts/cmd_opts.h"
#include "time/zk_time.h"
#include "uni/console.h"

void cmdline_ctx::configure(const cmd_opts& opts, text_hook hook) {
  wipe_progress = opts.show_progress;
  if (opts.diag_on && opts.diag_stream && opts.diag_stream->good()) timing_path = opts.diag_path;
  report_stderr = opts.profile;
  if (report_stderr || !timing_path.empty()) start_clock = zk::ntp64_now();
  if (hook && !opts.signal_name.empty()) {
    signal_hook = hook;
    signal_text = opts.signal_name;
  }
}

cmdline_ctx::~cmdline_ctx() {
  if (wipe_progress) uni::clear_progress_line();
  if (start_clock != 0) {
    // A destructor may not throw, so nothing here takes memory that could fail with an exception.
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "->%g secs",
                  zk::ntp64_diff_seconds(zk::ntp64_now(), start_clock));
    if (report_stderr) std::fprintf(stderr, "%s\n", text.data());
    std::FILE* const timing = timing_path.empty() ? nullptr : std::fopen(timing_path.c_str(), "a");
    if (timing) {
      std::fputs(text.data(), timing);
      std::fclose(timing);
    }
  }
  if (signal_hook) signal_hook(signal_text);
}
