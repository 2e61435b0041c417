#include "cache/row_writer.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::string_view utc_label = " UTC";
constexpr std::string_view local_label = " local";
constexpr size_t longest_pair = zk::longest_date + zk::longest_time + local_label.size();

constexpr std::string_view carve_titles[] = {"note", "offset"};
constexpr std::string_view titles[] = {
    "last mod date", "last mod time",     "access date",    "access time", "expires date",
    "expires time",  "last sync date",    "last sync time", "type",        "url",
    "user",          "filename",          "file size",      "directory",   "count",
    "HTTP header",   "index.dat filename"};
constexpr int verbose_cells = 6;  // user to HTTP header
constexpr size_t longest_number = 10;
// From the type on: the type itself, the file size and the count, whose lengths aren't at hand.
constexpr size_t cells_behind_times = 8;
constexpr size_t most_in_numbers = 4 + 2 * longest_number;

// Writes one cell behind the other, where there is enough space for all of them.
class cell_cursor {
 public:
  cell_cursor(char* begin, std::string_view cell_separator)
      : at(begin), separator(cell_separator) {}

  void put(std::string_view text) { at = std::copy(text.begin(), text.end(), at); }
  void put_number(uint32_t value) { at = std::to_chars(at, at + longest_number, value).ptr; }
  void end_cell() {
    if (separator.size() == 1) {
      *at++ = separator[0];
    } else {
      put(separator);
    }
  }

  char* at;

 private:
  const std::string_view separator;
};

zk::dos_pair dos_words(uint32_t pair) {
  return {static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)};
}

}  // namespace

row_writer::row_writer(std::ostream& stream, const cmd_opts& options)
    : out(stream), opts(options), masks(options.date_format, options.time_format) {}

void row_writer::write_header_line() {
  line.clear();
  if (opts.carve_columns) {
    for (const std::string_view title : carve_titles) append_cell(title);
  }
  for (const std::string_view title : titles) append_cell(title);
  line.drop_last(opts.csv_separator.size());
  end_line();
}

void row_writer::write_row(const record_table& table, const cache_row& row, uint64_t number) {
  line.clear();
  if (opts.carve_columns) append_carve_cells(row, number);
  const auto times = times_of(row);
  if (opts.use_locale) {
    append_locale_pairs(times);
  } else {
    append_masked_pairs(times);
  }
  append_other_cells(table, row);
  end_line();
}

std::array<row_writer::shown_time, 4> row_writer::times_of(const cache_row& row) {
  std::array<shown_time, 4> times;
  const auto load = [](shown_time& t, auto value) { t.shown = zk::shown_fields(value, t.fields); };
  load(times[0], row.last_mod);
  times[0].is_local = row.local_time;
  if (row.access == 0 && row.is_leak()) {
    load(times[1], dos_words(row.leak_access));
  } else {
    load(times[1], row.access);
  }
  load(times[2], dos_words(row.expires));
  load(times[3], dos_words(row.last_sync));
  return times;
}

void row_writer::append_cell(std::string_view text) {
  line.put(text);
  line.put(opts.csv_separator);
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
  for (size_t i = offset.size(); i < 8; ++i) line.put('0');
  append_cell(offset);
}

void row_writer::append_other_cells(const record_table& table, const cache_row& row) {
  const std::string_view directory = table.directory_of(row);
  const size_t texts = row.texts.size() + directory.size() + table.source.size();
  const size_t most = texts + most_in_numbers + cells_behind_times * opts.csv_separator.size();
  line.put(most, [&](char* begin) {
    cell_cursor cells(begin, opts.csv_separator);
    for (int shift = 0; shift < 32; shift += 8) {
      *cells.at++ = static_cast<char>(row.signature >> shift);
    }
    cells.end_cell();
    cells.put(row.texts.url());
    cells.end_cell();
    if (opts.verbose) {
      cells.put(row.texts.user());
      cells.end_cell();
      cells.put(row.texts.filename());
      cells.end_cell();
      cells.put_number(row.file_size);
      cells.end_cell();
      cells.put(directory);
      cells.end_cell();
      cells.put_number(row.count);
      cells.end_cell();
      cells.put(row.texts.http_header());
      cells.end_cell();
    } else {
      for (int i = 0; i < verbose_cells; ++i) cells.end_cell();
    }
    cells.put(table.source);
    return cells.at;
  });
}

void row_writer::append_masked_pairs(const std::array<shown_time, 4>& times) {
  const size_t most = times.size() * (longest_pair + 2 * opts.csv_separator.size());
  line.put(most, [&](char* begin) {
    cell_cursor cells(begin, opts.csv_separator);
    for (const shown_time& t : times) {
      if (t.shown) cells.at = masks.put_date(cells.at, t.fields);
      cells.end_cell();
      const char* const time_begin = cells.at;
      if (t.shown) cells.at = masks.put_time(cells.at, t.fields);
      if (cells.at != time_begin) cells.put(t.is_local ? local_label : utc_label);
      cells.end_cell();
    }
    return cells.at;
  });
}

void row_writer::append_locale_pairs(const std::array<shown_time, 4>& times) {
  for (const shown_time& t : times) {
    zk::time value;
    value.fields = t.fields;
    value.valid = t.shown;
    std::string date;
    std::string time;
    zk::format_default(date, time, value, true, false, &*opts.dates, false);
    append_cell(date);
    line.put(time);
    append_cell(!t.shown ? "" : t.is_local ? local_label : utc_label);
  }
}

void row_writer::end_line() {
  line.put('\n');
  // What `write` and `flush` do, with the stream's state looked at once for both.
  const std::ostream::sentry usable(out);
  if (!usable) return;
  std::streambuf& buffer = *out.rdbuf();
  const auto size = static_cast<std::streamsize>(line.size());
  if (buffer.sputn(line.text().data(), size) != size || buffer.pubsync() == -1) {
    out.setstate(std::ios::badbit);
  }
}
