// What the two hot loops cost: the search of bytes without records, and the way to a row.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cache/cache_row.h"
#include "cache/record_scan.h"
#include "cache/record_table.h"
#include "cache/row_writer.h"
#include "opts/cmd_opts.h"
#include "tools/index_builder.h"
#include "tools/sample_records.h"
#include "uni/fileio_output.h"

namespace {

constexpr size_t buffer_size = 16 << 20;

cmd_opts options() {
  cmd_opts opts;
  opts.input_path = "/evidence/Content.IE5/index.dat";
  return opts;
}

void set_bytes(benchmark::State& state, size_t each) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(each));
}

void scan_empty_buffer(benchmark::State& state) {
  sample::byte_vector bytes(buffer_size);
  const cmd_opts opts = options();
  for (auto _ : state) {
    record_table table(nullptr);
    scan_buffer(table, opts, bytes.data(), buffer_size, 0, 0);
    benchmark::DoNotOptimize(table.empty());
  }
  set_bytes(state, buffer_size);
}

// Scan, decoding and rows of a buffer full of typical records, in time per row.
void scan_full_buffer(benchmark::State& state) {
  sample::byte_vector bytes(sample::index_file::header_size);
  for (uint64_t n = 0; bytes.size() < buffer_size; ++n) {
    const sample::byte_vector record = sample::typical_record(n).bytes();
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  const cmd_opts opts = options();
  uni::null_out_stream out;
  uni::stream_sink sink(out);
  const std::vector<std::string> no_directories;
  row_writer writer(sink, opts, no_directories);
  size_t rows = 0;
  for (auto _ : state) {
    record_table table([&](const cache_row& row) { writer.write_row(row, ++rows); });
    table.next_chunk_at(bytes.size());
    scan_buffer(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), 0, 0);
  }
  state.counters["rows"] =
      benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
  set_bytes(state, bytes.size());
}

BENCHMARK(scan_empty_buffer);
BENCHMARK(scan_full_buffer);

}  // namespace
