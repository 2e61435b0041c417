// The last step of a run: when this object is destroyed, it wipes the progress line and reports the
// elapsed time where that was asked for.
#pragma once

#include <cstdint>
#include <string>

#include "opts/cmd_opts.h"

class cmdline_ctx {
 public:
  using text_hook = int (*)(const std::string& text);

  cmdline_ctx() = default;
  cmdline_ctx(const cmdline_ctx&) = delete;
  cmdline_ctx& operator=(const cmdline_ctx&) = delete;
  ~cmdline_ctx();

  // Takes what it needs from the options, and starts the clock if the time is to be reported.
  // Without this call nothing happens at the end. `hook`, or null, gets the text of -signal.
  void configure(const cmd_opts& opts, text_hook hook);

 private:
  bool wipe_progress = false;
  uint64_t start_clock = 0;  // NTP stamp, 0 if no time is taken
  bool report_stderr = false;
  std::string timing_path;  // the -diags file, to which the time is added
  std::string signal_text;
  text_hook signal_hook = nullptr;
};
