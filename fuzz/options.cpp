// Any list of arguments, up to where the mode would run; then the form of the rows that it gives.
#include <sstream>

#include "cache/row_writer.h"
#include "front/arguments.h"
#include "front/disk_options.h"
#include "front/option_table.h"
#include "fuzz/support.h"
#include "opts/cmd_opts.h"
#include "uni/fileio_output.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  argument_list args = texts_of(data, size);
  args.insert(args.begin(), "udx");
  // These would write to files and remove them.
  for (const char* name : {"-out", "-outfile", "-diags"}) {
    while (take_flag(name, args)) {
    }
  }
  cmd_opts opts;
  if (!parse_options(opts, args)) return 0;
  require(parse_vmdk_options(opts, args, nullptr, nullptr, true, "-vmdk"), "a list is taken");
  require(opts.date_format.size() == 8 || opts.date_format.size() == 10, "a date mask fits");
  const size_t time_size = opts.time_format.size();
  require(time_size == 8 || (time_size >= 12 && time_size <= 18), "a time mask fits");
  if (opts.start_time_set && opts.stop_time_set) {
    require(opts.start_filetime <= opts.stop_filetime, "a span doesn't stop before its start");
  }

  std::ostringstream out;
  uni::stream_sink sink(out);
  const std::vector<std::string> no_directories;
  row_writer writer(sink, opts, no_directories);
  writer.write_header_line();
  require(out.str().ends_with("index.dat filename\n"), "the header line ends with its last title");
  out.str("");
  cache_row row;
  row.last_mod = 128000000000000000;
  row.expires = 0x12345678;
  writer.write_row(row, 1);
  const std::string line = out.str();
  size_t separators = 0;
  for (size_t at = 0; !opts.csv_separator.empty();) {
    at = line.find(opts.csv_separator, at);
    if (at == std::string::npos) break;
    at += opts.csv_separator.size();
    ++separators;
  }
  require(opts.csv_separator.empty() || separators >= 16, "a row has 17 cells");
  return 0;
}
