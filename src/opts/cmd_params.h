// The run's parameters: what the options set. Many are accepted and stored only, and nothing acts
// on them; those are marked "stored".
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "opts/path_filter.h"
#include "time/date_format_context.h"
#include "time/zk_time.h"

struct cmd_params {
  zk::time launch_time;                            // when the run began
  std::string cmdline;                             // the arguments, joined
  std::string prog_name;                           // stored
  std::string out_path;                            // results file; empty for standard output
  std::string out_dir;                             // stored
  std::string username;                            // stored
  std::string hostname;                            // stored
  std::map<std::string, std::string> alias_paths;  // stored
  std::map<std::string, std::string> aliases;      // stored
  std::string date_format = "yyyy-mm-dd";
  std::string time_format = "hh:mm:ss.xxx";
  zk::date_format_context format_masks;  // stored
  char delim_char = '|';                 // stored
  char delim_subst = ';';                // stored
  std::string csv_separator = " | ";     // between the cells of a row
  bool field_trim = false;               // stored
  bool field_pad = true;                 // stored
  bool base16 = true;                    // stored
  bool username_set = false;             // stored
  bool hostname_set = false;             // stored
  bool split_pathfile = false;           // stored
  bool quoted_csv_fields = false;        // read by set_separator alone
  std::vector<std::wstring> vmdk_paths;  // the disk's files, in the order given
  uint64_t vmdk_offset = 0;              // stored
  bool gzip_out = false;                 // stored, and so are the next four
  bool gzip_mode = false;
  bool zlib_mode = false;
  bool zlibex_mode = false;
  std::string zlibex_value;
  uint32_t threads = 0;         // stored
  bool out_dir_set = false;     // stored
  bool out_path_set = false;    // stored
  int32_t cpuinst = -1;         // stored
  int32_t cpu = 0;              // stored
  bool separate_files = false;  // stored
  int32_t fragment_files = 0;   // stored
  bool mode_xml = false;        // stored, and so are the next five
  bool mode_csv = false;
  bool mode_csvl2t = false;
  bool mode_csvgen = false;
  bool mode_bodyfile = false;
  bool mode_multiline = false;
  bool verbose = true;         // rows have their cells from user to HTTP header filled
  bool show_progress = true;   // progress lines of a large file, and the wipes after them
  bool pair_datetime = false;  // read by -csv and format_masks alone
  bool pipe_ungated = false;   // the gate isn't asked for -pipe
  bool header_pending = true;  // the header line is still to be written
  bool diag_on = false;
  int32_t diag_level = 0;  // stored
  std::unique_ptr<std::ostream> diag_stream;
  std::string diag_path;
  bool profile = false;                   // report the elapsed time
  std::string signal_name;                // for a hook that does nothing
  std::vector<path_filter> filters;       // which paths of a list are taken
  std::vector<path_filter> skip_filters;  // stored
  bool pipe = false;                      // paths come from standard input
  std::string enumdir_path;               // the folder to walk
  uint32_t num_subdirs = 0;               // how many levels below it
  bool enumdir = false;
  std::string os_product_version;  // stored, and so are the next three
  int32_t os_version_major = 0;
  int32_t os_version_minor = 0;
  int32_t os_version_patch = 0;
  bool start_time_set = false;  // the time span that a filtered path's file must lie in
  bool stop_time_set = false;
  uint64_t start_filetime = 0;
  uint64_t stop_filetime = 0;
  uint32_t start_unix = 0;
  uint32_t stop_unix = 0;

  // Sets the separator between cells, "tab" meaning a tab, and the delimiters that follow from it;
  // `semicolon` says by what a comma would be replaced.
  void set_separator(const std::string& text, bool semicolon);

  // Write a line to the -diags file, if there is one.
  void diag_write(const std::string& text);
  [[gnu::format(printf, 2, 3)]] void diag_printf(const char* format, ...);
};
