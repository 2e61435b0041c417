// Whether a path of a list or a walk is taken, by its name, its folder, bytes of its file and the
// file's time.
#pragma once

#include <cstdint>
#include <string>

#include "front/filter_text.h"
#include "opts/cmd_params.h"

// A file's modification time. The system is asked at most once for each path.
struct file_stat {
  uint64_t mod_time = 0;     // seconds since 1970; 0 until loaded
  uint64_t second_time = 0;  // none here
  int kind = 0;              // 8 where the seconds fit 32 bits, else 16
};

// The test of a path that is UTF-8. False for an empty path, and with filters for one that isn't
// UTF-8. Names are compared in lower case; the first filter that fits decides. `unreadable` tells
// that a file whose bytes were to be compared couldn't be opened. Without a `stat`, as while a
// walk lists a folder, no time is tested; the driver tests each walked path again, with one.
// Deliberate: an empty filter list takes every other path at once, so that the time span counts
// only beside a filter.
bool filter_match(const cmd_params& span, bool& unreadable, const std::string& path,
                  const filter_list& filters, file_stat* stat);
