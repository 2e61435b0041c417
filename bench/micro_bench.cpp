// What one step of the road costs, beside what the machine can do at all.
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>

#include "cache/record_scan.h"
#include "cache/row_writer.h"
#include "time/time_format.h"
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

// The n-th typical record that is a URL record.
sample::byte_vector url_bytes() {
  return sample::typical_record(3).bytes();
}

void set_bytes(benchmark::State& state, size_t each) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(each));
}

void copy_memory(benchmark::State& state) {
  const sample::byte_vector from(buffer_size, 1);
  sample::byte_vector to(buffer_size);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), buffer_size);
    benchmark::DoNotOptimize(to.data());
  }
  set_bytes(state, buffer_size);
}

void scan_empty_buffer(benchmark::State& state) {
  sample::byte_vector bytes(buffer_size);
  const cmd_opts opts = options();
  for (auto _ : state) {
    record_table table(opts);
    scan_buffer(table, opts, bytes.data(), buffer_size, 0, 0);
    benchmark::DoNotOptimize(table.rows.size());
  }
  set_bytes(state, buffer_size);
}

void decode_record(benchmark::State& state) {
  sample::byte_vector bytes = url_bytes();
  url_record record;
  for (auto _ : state) {
    decode_url_record(record, bytes.data(), 0, static_cast<uint32_t>(bytes.size()), 1);
    benchmark::DoNotOptimize(record.url.data());
  }
}

void build_row(benchmark::State& state) {
  const cmd_opts opts = options();
  sample::byte_vector bytes = url_bytes();
  const auto size = static_cast<uint32_t>(bytes.size());
  for (auto _ : state) {
    record_table table(opts);
    for (uint64_t position = 0; position < 1000; ++position) {
      add_record(table, opts, bytes.data(), size, position);
    }
  }
  state.SetItemsProcessed(state.iterations() * 1000);
}

void format_time_pair(benchmark::State& state) {
  const zk::masked_format masks("yyyy-mm-dd", "hh:mm:ss.xxx");
  const uint64_t filetime = sample::filetime_of(2009, 7, 21, 18, 4, 5);
  std::array<char, zk::longest_date + zk::longest_time> text;
  zk::time t;
  uint64_t ticks = 0;
  for (auto _ : state) {
    t.set_value(filetime + (ticks += 12345678), zk::type_time::filetime);
    masks.put_time(masks.put_date(text.data(), t.fields), t.fields);
    benchmark::DoNotOptimize(text.data());
  }
}

void write_one_row(benchmark::State& state) {
  sample::byte_vector bytes = url_bytes();
  const cmd_opts opts = options();
  record_table table(opts);
  add_record(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), 128);
  uni::null_out_stream out;
  row_writer writer(out, opts);
  for (auto _ : state) writer.write_row(table, table.rows.front(), 1);
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
  size_t rows = 0;
  for (auto _ : state) {
    record_table table(opts);
    scan_buffer(table, opts, bytes.data(), static_cast<uint32_t>(bytes.size()), 0, 0);
    row_writer writer(out, opts);
    for (const cache_row& row : table.rows) writer.write_row(table, row, 1);
    rows += table.rows.size();
  }
  state.counters["rows"] =
      benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
  set_bytes(state, bytes.size());
}

BENCHMARK(copy_memory);
BENCHMARK(scan_empty_buffer);
BENCHMARK(decode_record);
BENCHMARK(build_row);
BENCHMARK(format_time_pair);
BENCHMARK(write_one_row);
BENCHMARK(scan_full_buffer);

}  // namespace
