#include "cache/row_writer.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "time/shown_fields.h"

namespace {

constexpr std::string_view carve_titles[] = {"note", "offset"};
constexpr std::string_view titles[] = {
    "last mod date", "last mod time",     "access date",    "access time", "expires date",
    "expires time",  "last sync date",    "last sync time", "type",        "url",
    "user",          "filename",          "file size",      "directory",   "count",
    "HTTP header",   "index.dat filename"};
constexpr std::string_view utc_label = " UTC";
constexpr std::string_view local_label = " local";
constexpr int verbose_cells = 6;  // user to HTTP header
constexpr size_t longest_number = 10;
// From the type on: the type itself, the file size and the count, whose lengths aren't at hand.
constexpr size_t cells_behind_times = 8;
constexpr size_t most_in_numbers = 4 + 2 * longest_number;

zk::dos_pair dos_words(uint32_t pair) {
  return {static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)};
}

char* put(char* at, std::string_view text) {
  return std::copy(text.begin(), text.end(), at);
}

// Writes a number, and up to `longest_number` bytes in all: to copy as many as the number has would
// take a choice that the processor guesses wrong.
char* put_number(char* at, uint32_t value) {
  std::array<char, 2 * longest_number> digits = {};
  char* const end = digits.data() + longest_number;
  char* begin = end;
  for (; value >= 100; value /= 100) zk::put_two_digits(begin -= 2, value % 100);
  zk::put_two_digits(begin -= 2, value);
  if (value < 10) ++begin;
  std::copy_n(begin, longest_number, at);
  return at + (end - begin);
}

// Writes a text that is mostly a single character.
char* put_separator(char* at, std::string_view separator) {
  if (separator.size() != 1) return put(at, separator);
  *at = separator[0];
  return at + 1;
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

row_writer::row_writer(std::ostream& stream, const cmd_opts& options)
    : out(stream),
      file_buffer(dynamic_cast<uni::fileio_ostream*>(stream.rdbuf())),
      opts(options),
      utc_format(opts.date_format, opts.time_format, opts.csv_separator, utc_label),
      local_format(opts.date_format, opts.time_format, opts.csv_separator, local_label) {}

void row_writer::write_header_line() {
  begin_line();
  if (opts.carve_columns) {
    for (const std::string_view title : carve_titles) append_cell(title);
  }
  for (const std::string_view title : titles) append_cell(title);
  line.drop_last(opts.csv_separator.size());
  end_line();
}

void row_writer::write_row(const record_table& table, const cache_row& row, uint64_t number) {
  begin_line();
  if (opts.carve_columns) append_carve_cells(row, number);
  if (opts.use_locale) {
    append_locale_pairs(row);
  } else {
    append_masked_pairs(row);
  }
  append_other_cells(table, row);
  end_line();
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
  const std::string_view separator = opts.csv_separator;
  const std::string_view directory = table.directory_of(row);
  const size_t texts = row.texts.size() + directory.size() + table.source.size();
  line.put(texts + most_in_numbers + cells_behind_times * separator.size(), [&](char* at) {
    const auto end_cell = [separator](char* end) { return put_separator(end, separator); };
    zk::store_le32(reinterpret_cast<uint8_t*>(at), row.signature);
    at = end_cell(at + sizeof(row.signature));
    const auto put_url = row.is_redirect() ? put_shown_redirect : put_shown;
    at = end_cell(put_url(at, row.texts.url()));
    if (opts.verbose) {
      at = end_cell(put(at, row.texts.user()));
      at = end_cell(put_shown(at, row.texts.filename()));
      at = end_cell(put_number(at, row.file_size));
      at = end_cell(put(at, directory));
      at = end_cell(put_number(at, row.count));
      at = end_cell(put_shown_header(at, row.texts.http_header()));
    } else {
      for (int i = 0; i < verbose_cells; ++i) at = end_cell(at);
    }
    return put(at, table.source);
  });
}

// Flat: calls on a time's way to its digits would take a tenth of a row's instructions.
[[gnu::flatten]] void row_writer::append_masked_pairs(const cache_row& row) {
  const std::string_view separator = opts.csv_separator;
  line.put(4 * local_format.space(), [&](char* at) {
    for_each_time(row, [&](auto value, bool is_local) {
      zk::_windows_systemtime fields;
      if (zk::shown_fields(value, fields)) {
        at = (is_local ? local_format : utc_format).put(at, fields);
      } else {
        at = put_separator(put_separator(at, separator), separator);
      }
    });
    return at;
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

void row_writer::begin_line() {
  line.begin(file_buffer ? file_buffer->space() : std::span<char>());
}

void row_writer::end_line() {
  line.put('\n');
  if (line.in_lent_space()) return file_buffer->advance(line.size());
  // What `write` and `flush` do, with the stream's state looked at once for both.
  if (!out.good()) return;
  std::streambuf& buffer = *out.rdbuf();
  const auto size = static_cast<std::streamsize>(line.size());
  if (buffer.sputn(line.text().data(), size) != size || buffer.pubsync() == -1) {
    out.setstate(std::ios::badbit);
  }
}
