// The search over any bytes: where it finds rows, what it may change, what a row's text may hold.
#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cache/index_dat.h"
#include "cache/record_scan.h"
#include "cache/record_signature.h"
#include "cache/redr_record.h"
#include "cache/row_writer.h"
#include "cache/shown_texts.h"
#include "cache/url_record.h"
#include "fuzz/support.h"
#include "opts/cmd_opts.h"
#include "uni/fileio_output.h"

namespace {

auto count_of(std::string_view text, char c) {
  return std::count(text.begin(), text.end(), c);
}

void check_text(const cache_row& row, std::string_view directory, const std::string& line) {
  std::string header(row.http_header);
  put_shown_header(header.data(), row.http_header);
  require(std::all_of(header.begin(), header.end(),
                      [](char c) { return c >= 0x20 && c <= 0x7E && c != ','; }),
          "a header text is printable");
  require(line.find(header + ",/evidence/") != std::string::npos, "a row shows its header text");
  // A user and a directory name keep what they hold, a REDR record's URL its line ends.
  const auto kept = [&](char c) {
    return count_of(row.user, c) + count_of(directory, c) +
           (row.is_redirect() && c != ',' ? count_of(row.url, c) : 0);
  };
  require(count_of(line, ',') == 16 + kept(','), "a row has 17 cells");
  require(count_of(line, '\n') == 1 + kept('\n'), "a row is one line");
  require(count_of(line, '\r') == kept('\r'), "a row has no line end more");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  byte_vector bytes(data, data + size);
  cmd_opts opts;
  opts.input_path = "/evidence/index.dat";
  std::vector<cache_row> rows;
  record_table table([&rows](const cache_row& row) { rows.push_back(row); });
  table.next_chunk_at(size);  // so that all leave at once, and their texts stay in the bytes
  const bool found = scan_buffer(table, opts, bytes.data(), static_cast<uint32_t>(size), 0, 0);
  cache_container container;
  std::vector<std::string> directories;
  attach_directories(container, directories, bytes.data(), static_cast<uint32_t>(size));

  // Each signature on the grid, and what it must come to, worked out apart from the search.
  byte_vector expected(data, data + size);
  std::map<uint64_t, uint32_t> signatures;
  for (size_t at = block_size; at + 4 < size; at += block_size) {
    const uint32_t four = zk::load_le32(data + at);
    if (is_url_or_leak(four) || four == redr_signature) signatures.emplace(at, four);
  }
  for (auto place = signatures.begin(); place != signatures.end(); ++place) {
    const auto [at, four] = *place;
    const size_t left = size - at;
    const bool few_blocks = left >= 8 && zk::load_le32(data + at + 4) < too_many_blocks;
    const bool leak_counts = four == leak_signature && left >= url_layout::fixed_size;
    const bool redr_counts = four == redr_signature && left >= redr_layout::fixed_size;
    if (few_blocks && (leak_counts || redr_counts)) {
      const auto is_there = [at = at](const cache_row& row) { return row.offset == at; };
      require(std::any_of(rows.begin(), rows.end(), is_there),
              "a whole LEAK or REDR record gives a row");
    }
    const auto next = std::next(place);
    if (is_url_or_leak(four) && next != signatures.end()) {
      zk::store_le32(&expected[at + 4], static_cast<uint32_t>(next->first - at) / block_size);
    }
  }
  require(found == !signatures.empty(), "the result tells of signatures");
  require(bytes == expected, "only block counts change, to where the next record begins");

  std::ostringstream out;
  uni::stream_sink sink(out);
  row_writer writer(sink, opts, directories);
  const auto not_behind = [](const cache_row& a, const cache_row& b) {
    return a.offset >= b.offset;
  };
  require(std::adjacent_find(rows.begin(), rows.end(), not_behind) == rows.end(), "rows ascend");
  for (const cache_row& row : rows) {
    const auto place = signatures.find(row.offset);
    require(place != signatures.end() && place->second == row.signature,
            "a row stands at its signature");
    out.str("");
    writer.write_row(row, 1);
    const bool named = row.directory_index < directories.size();
    check_text(row, named ? directories[row.directory_index] : "", out.str());
  }
  return 0;
}
