#include "cache/row_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "cache/cache_row.h"
#include "cache/shown_texts.h"
#include "opts/cmd_opts.h"
#include "text/le_bytes.h"
#include "text/line_sink.h"
#include "time/shown_fields.h"
#include "time/time_format.h"

namespace {

constexpr std::string_view carve_titles[] = {"note", "offset"};
constexpr std::string_view titles[] = {
    "last mod date", "last mod time",     "access date",    "access time", "expires date",
    "expires time",  "last sync date",    "last sync time", "type",        "url",
    "user",          "filename",          "file size",      "directory",   "count",
    "HTTP header",   "index.dat filename"};
constexpr std::string_view utc_label = " UTC";
constexpr std::string_view local_label = " local";

char* put_as_stored(char* at, std::string_view text) {
  return std::copy(text.begin(), text.end(), at);
}

// Mostly a single character, for which a call to copy it would take 7% of a row.
char* put_separator(char* at, std::string_view separator) {
  if (separator.size() != 1) return put_as_stored(at, separator);
  *at = separator[0];
  return at + 1;
}

// The kinds of cells: how many bytes one takes at most, and how it is written.
struct type_cell {
  uint32_t signature;
  size_t space() const { return sizeof(signature); }
  char* put(char* at) const {
    zk::store_le32(reinterpret_cast<uint8_t*>(at), signature);
    return at + sizeof(signature);
  }
};

struct number_cell {
  uint32_t value;
  size_t space() const { return std::numeric_limits<uint32_t>::digits10 + 1; }
  char* put(char* at) const { return std::to_chars(at, at + space(), value).ptr; }
};

struct text_cell {
  std::string_view text;
  char* (*put_text)(char*, std::string_view) = put_as_stored;
  size_t space() const { return text.size(); }
  char* put(char* at) const { return put_text(at, text); }
};

zk::dos_pair dos_words(uint32_t pair) {
  return {static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)};
}

// Calls `show` with the value of each time of a row, in the order of the columns, and whether it is
// local time.
template <class Show>
void for_each_time(const cache_row& row, Show show) {
  show(row.last_mod, row.local_time);
  if (row.access == 0 && row.is_leak()) {
    show(dos_words(row.leak_access), false);
  } else {
    show(row.access, false);
  }
  show(dos_words(row.expires), false);
  show(dos_words(row.last_sync), false);
}

}  // namespace

row_writer::row_writer(zk::line_sink& out, const cmd_opts& options,
                       const std::vector<std::string>& directory_names)
    : opts(options),
      directories(directory_names),
      source(source_name(opts)),
      utc_format(opts.date_format, opts.time_format, opts.csv_separator, utc_label),
      local_format(opts.date_format, opts.time_format, opts.csv_separator, local_label),
      line(out) {}

void row_writer::write_header_line() {
  line.begin();
  if (opts.carve_columns) {
    for (const std::string_view title : carve_titles) append_cell(title);
  }
  for (const std::string_view title : titles) append_cell(title);
  line.drop_last(opts.csv_separator.size());
  line.end();
}

void row_writer::write_row(const cache_row& row, uint64_t number) {
  line.begin();
  if (opts.carve_columns) append_carve_cells(row, number);
  if (opts.use_locale) {
    append_locale_pairs(row);
  } else {
    append_masked_pairs(row);
  }
  append_other_cells(row);
  line.put(source);
  line.end();
}

void row_writer::append_cell(std::string_view text) {
  line.put(text);
  line.put(opts.csv_separator);
}

// One reservation for all of them: a row's time is spent in such small steps.
template <class... Cells>
void row_writer::append_cells(const Cells&... cells) {
  const std::string_view separator = opts.csv_separator;
  line.put((0 + ... + (cells.space() + separator.size())), [&](char* at) {
    ((at = put_separator(cells.put(at), separator)), ...);
    return at;
  });
}

void row_writer::append_carve_cells(const cache_row& row, uint64_t number) {
  std::array<char, 20> digits;
  const auto text = [&digits](uint64_t value, int base) {
    char* const begin = digits.data();
    const char* const end = std::to_chars(begin, begin + digits.size(), value, base).ptr;
    return std::string_view(begin, static_cast<size_t>(end - begin));
  };
  append_cell(text(number, 10));
  line.put("0x");
  const std::string_view offset = text(row.offset, 16);
  for (size_t i = offset.size(); i < 8; ++i) line.put("0");
  append_cell(offset);
}

void row_writer::append_other_cells(const cache_row& row) {
  const type_cell type = {row.signature};
  const text_cell url = {row.url, row.is_redirect() ? put_shown_redirect : put_shown};
  if (opts.verbose) {
    append_cells(type, url, text_cell{row.user}, text_cell{row.filename, put_shown},
                 number_cell{row.file_size}, text_cell{directory_of(row)}, number_cell{row.count},
                 text_cell{row.http_header, put_shown_header});
  } else {
    const text_cell none = {};
    append_cells(type, url, none, none, none, none, none, none);
  }
}

// Flat: calls on a time's way to its digits would take a tenth of a row's instructions.
[[gnu::flatten]] void row_writer::append_masked_pairs(const cache_row& row) {
  for_each_time(row, [&](auto value, bool is_local) {
    zk::_windows_systemtime fields;
    if (zk::shown_fields(value, fields)) {
      const zk::masked_format& format = is_local ? local_format : utc_format;
      line.put(format.space(), [&](char* at) { return format.put(at, fields); });
    } else {
      append_cells(text_cell{}, text_cell{});
    }
  });
}

void row_writer::append_locale_pairs(const cache_row& row) {
  for_each_time(row, [&](auto value, bool is_local) {
    zk::time t;
    t.valid = zk::shown_fields(value, t.fields);
    std::string date;
    std::string time;
    zk::format_default(date, time, t, true, false, &*opts.dates, false);
    append_cell(date);
    if (t.valid) time += is_local ? local_label : utc_label;
    append_cell(time);
  });
}

std::string_view row_writer::directory_of(const cache_row& row) const {
  if (row.directory_index >= directories.size()) return {};
  return directories[row.directory_index];
}
