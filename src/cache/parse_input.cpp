#include "cache/parse_input.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "cache/cache_row.h"
#include "cache/chunk_readers.h"
#include "cache/index_dat.h"
#include "cache/record_scan.h"
#include "cache/record_table.h"
#include "cache/row_writer.h"
#include "opts/cmd_opts.h"
#include "text/line_sink.h"
#include "uni/fileio.h"

namespace {

// Reads the whole file into a zero-filled buffer with one read. False if there isn't the memory or
// the read fails, as a folder's does.
bool read_whole(std::vector<uint8_t>& bytes, const uni::fileio& file) {
  try {
    bytes.resize(static_cast<size_t>(file.size()));
  } catch (const std::bad_alloc&) {
    return false;
  }
  auto count = static_cast<uint32_t>(bytes.size());
  return file.read_at(bytes.data(), count, 0);
}

// Writes the rows of one input, and before the first the header line if it is still pending.
class row_output {
 public:
  row_output(zk::line_sink& sink, cmd_opts& options) : out(sink), opts(options) {}

  std::vector<std::string> directories;  // names of the input's cache directories, once known

  void write_pending_header() {
    if (!writer) writer.emplace(out, opts, directories);
    if (!opts.header_pending || !opts.write_header) return;
    writer->write_header_line();
    opts.header_pending = false;
  }

  void write(const cache_row& row) {
    write_pending_header();
    if (opts.write_header) {
      writer->write_row(row, ++number);
    } else {
      out.take("\n");
    }
  }

 private:
  zk::line_sink& out;
  cmd_opts& opts;
  std::optional<row_writer> writer;  // made once there is something to write
  uint64_t number = 0;
};

// Searches a file's bytes. True if there is at least one row.
bool scan_whole_file(record_table& table, row_output& output, cmd_opts& opts,
                     std::vector<uint8_t>& bytes) {
  table.keep_all();  // until their directories are known
  const auto size = static_cast<uint32_t>(bytes.size());
  classify_path(opts);
  cache_container container;
  if (!opts.any_signature && !read_header(container, bytes.data(), size)) return false;
  opts.any_signature = true;
  if (!scan_buffer(table, opts, bytes.data(), size, 0, 0)) return false;
  attach_directories(container, output.directories, bytes.data(), size);
  return !table.empty();
}

// Searches the file at `input_path`. Nothing if the file gives no output at all, not even a header
// line.
std::optional<bool> scan_file(record_table& table, row_output& output, cmd_opts& opts) {
  uni::fileio file(opts.input_path);
  if (!file.is_open()) {
    std::cout << "prob opening " << opts.input_path << " for read, aborting\n" << std::flush;
    return std::nullopt;
  }
  if (file.size() == 0) return std::nullopt;
  if (file.size() > largest_whole_file) {
    file.close();
    return scan_large_file(table, opts);
  }
  std::vector<uint8_t> bytes;
  if (!read_whole(bytes, file)) return std::nullopt;
  file.close();
  return scan_whole_file(table, output, opts, bytes);
}

}  // namespace

bool parse_input(zk::line_sink& out, cmd_opts& opts) {
  row_output output(out, opts);
  record_table table([&output](const cache_row& row) { output.write(row); });
  bool result = false;
  if (!opts.input_path.empty()) {
    const std::optional<bool> scanned = scan_file(table, output, opts);
    if (!scanned) return false;
    result = *scanned;
  } else if (!opts.partition_path.empty() || !opts.vmdk_paths.empty()) {
    result = scan_raw_source(table, opts);
  }
  output.write_pending_header();
  table.end_input();
  return result;
}
