#include "cache/parse_input.h"

#include <cstdint>
#include <iostream>
#include <new>
#include <optional>
#include <vector>

#include "cache/block_readers.h"
#include "cache/index_dat.h"
#include "cache/record_scan.h"
#include "cache/row_writer.h"
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

// Fills the table from a file's bytes. True if there is at least one row.
bool scan_whole_file(record_table& table, cmd_opts& opts, std::vector<uint8_t>& bytes) {
  const auto size = static_cast<uint32_t>(bytes.size());
  classify_path(opts);
  cache_container container;
  if (!opts.any_signature && !read_header(container, bytes.data(), size)) return false;
  opts.any_signature = true;
  if (!scan_buffer(table, opts, bytes.data(), size, 0, 0)) return false;
  attach_directories(container, table, bytes.data(), size);
  return !table.rows.empty();
}

// Fills the table from the file at `input_path`. Nothing if the file gives no output at all, not
// even a header line.
std::optional<bool> scan_file(record_table& table, cmd_opts& opts) {
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
  return scan_whole_file(table, opts, bytes);
}

void write_rows(std::ostream& out, const record_table& table, const cmd_opts& opts) {
  row_writer writer(out, opts);
  uint64_t number = 0;
  for (const cache_row& row : table.rows) {
    if (opts.write_header) {
      writer.write_row(table, row, ++number);
    } else {
      out << std::endl;
    }
  }
}

}  // namespace

bool parse_input(std::ostream& out, cmd_opts& opts) {
  record_table table(opts);
  bool result = false;
  if (!opts.input_path.empty()) {
    const std::optional<bool> scanned = scan_file(table, opts);
    if (!scanned) return false;
    result = *scanned;
  } else if (!opts.partition_path.empty() || !opts.vmdk_paths.empty()) {
    result = scan_raw_source(table, opts);
  }
  if (opts.header_pending && opts.write_header) {
    opts.header_pending = false;
    row_writer(out, opts).write_header_line();
  }
  if (result) write_rows(out, table, opts);
  return result;
}
