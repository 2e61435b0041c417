#include "cache/row_writer.h"

#include <array>
#include <charconv>

namespace {

constexpr std::string_view utc_label = " UTC";
constexpr std::string_view local_label = " local";

constexpr std::string_view carve_titles[] = {"note", "offset"};
constexpr std::string_view titles[] = {
    "last mod date", "last mod time",     "access date",    "access time", "expires date",
    "expires time",  "last sync date",    "last sync time", "type",        "url",
    "user",          "filename",          "file size",      "directory",   "count",
    "HTTP header",   "index.dat filename"};
constexpr int verbose_cells = 6;  // user to HTTP header

}  // namespace

row_writer::row_writer(std::ostream& stream, const cmd_opts& options)
    : out(stream), opts(options), masks(options.date_format, options.time_format) {
  if (opts.use_locale) dates.emplace();
}

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
  if (opts.carve_columns) {
    append_number(number);
    end_cell();
    line.put("0x");
    append_number(row.offset, 16, 8);
    end_cell();
  }
  append_filetime_pair(row.last_mod, row.local_time ? local_label : utc_label);
  append_access_pair(row);
  append_dos_pair(row.expires);
  append_dos_pair(row.last_sync);
  for (int shift = 0; shift < 32; shift += 8) {
    line.put(static_cast<char>(row.signature >> shift));
  }
  end_cell();
  append_cell(row.url());
  if (opts.verbose) {
    append_cell(row.user());
    append_cell(row.filename());
    append_number(row.file_size);
    end_cell();
    append_cell(table.directory_of(row));
    append_number(row.count);
    end_cell();
    append_cell(row.http_header());
  } else {
    for (int i = 0; i < verbose_cells; ++i) end_cell();
  }
  line.put(table.source);
  end_line();
}

void row_writer::end_cell() {
  if (opts.csv_separator.size() == 1) {
    line.put(opts.csv_separator[0]);
  } else {
    line.put(opts.csv_separator);
  }
}

void row_writer::append_cell(std::string_view text) {
  line.put(text);
  end_cell();
}

void row_writer::append_number(uint64_t value, int base, size_t width) {
  std::array<char, 20> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, base).ptr;
  const std::string_view text(digits.data(), static_cast<size_t>(end - digits.data()));
  for (size_t i = text.size(); i < width; ++i) line.put('0');
  line.put(text);
}

void row_writer::append_time_pair(const zk::time& t, std::string_view label) {
  if (!t.valid) {
    end_cell();
    end_cell();
    return;
  }
  std::string date;
  std::string time;
  if (dates) {
    zk::format_default(date, time, t, true, false, &*dates, false);
    append_cell(date);
  } else {
    line.put(zk::longest_date, [&](char* at) { return masks.put_date(at, t.fields); });
    end_cell();
  }
  const size_t time_begin = line.size();
  if (dates) {
    line.put(time);
  } else {
    line.put(zk::longest_time, [&](char* at) { return masks.put_time(at, t.fields); });
  }
  if (line.size() != time_begin) line.put(label);
  end_cell();
}

void row_writer::append_filetime_pair(uint64_t filetime, std::string_view label) {
  loaded.set_value(filetime, zk::type_time::filetime);
  append_time_pair(loaded, label);
}

void row_writer::append_dos_pair(uint32_t pair) {
  loaded.set_dos({static_cast<uint16_t>(pair), static_cast<uint16_t>(pair >> 16)}, true);
  append_time_pair(loaded, utc_label);
}

void row_writer::append_access_pair(const cache_row& row) {
  if (row.access == 0 && row.is_leak()) {
    append_dos_pair(row.leak_access);
  } else {
    append_filetime_pair(row.access, utc_label);
  }
}

void row_writer::end_line() {
  line.put('\n');
  out.write(line.text().data(), static_cast<std::streamsize>(line.size()));
  out.flush();
}
