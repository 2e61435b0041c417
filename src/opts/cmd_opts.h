// The run's parameter record, made once by the driver and passed by reference. Options set most of
// it, and these fields are what a run learns:
//
//   results_fd              set by the driver once the results can be written
//   use_locale, dates       by the driver's take_locale
//   input_path              by the driver, for each input
//   any_signature           by take_locale, and by parse_input at the first file it reads whole
//   file_kind               by classify_path, for each file that is read whole
//   header_pending          cleared by parse_input after the header line
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
  uint32_t file_kind = 1;                 // a large file and a disk keep that of the file before

  cmd_opts() {
    mode_csv = true;
    csv_separator.assign(1, ',');
    delim_char = ';';
    delim_subst = ' ';
  }
};
