// The run's parameter record, built once by the driver and passed by reference. The engine reads it
// and keeps in it the little that crosses from one input to the next.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "opts/cmd_params.h"
#include "time/time_format.h"

struct cmd_opts : cmd_params {
  std::string input_path;                 // the file being parsed now
  int results_fd = -1;                    // where the rows go, to see whether they must wait
  bool write_header = true;               // if not, rows are empty lines too; nothing clears it
  bool any_signature = false;             // files are parsed whatever they begin with
  bool carve_columns = false;             // columns "note" and "offset"; nothing sets it
  bool use_locale = false;                // dates as the user's locale has them
  std::optional<zk::locale_dates> dates;  // there with `use_locale`: one form throughout the run
  std::string partition_path;             // value of -partition
  bool admin_rights = false;              // nothing sets it
  // Of the last input that was read whole, from its path: a large file and a disk don't set it.
  uint32_t file_kind = 1;

  cmd_opts() {
    mode_csv = true;
    csv_separator.assign(1, ',');
    delim_char = ';';
    delim_subst = ' ';
  }
};
