#include "cache/cache_row.h"
#include <cstdint>
#include <string>
#include <string_view>

#include "cache/index_dat.h"
#include "cache/redr_record.h"
#include "cache/shown_texts.h"
#include "cache/url_record.h"
#include "opts/cmd_opts.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

constexpr uint32_t unset_count = 0xDEADBEEF;
constexpr uint64_t unset_filetime = 0xDEADBEEFDEADBEEF;
constexpr uint32_t unset_dos_date = 0xBEEF;  // in the date word, whatever the time word holds

uint64_t filetime_field(const url_record& record, uint32_t at) {
  const uint64_t value = record.field64(at);
  return value == unset_filetime ? 0 : value;
}

uint32_t dos_field(const url_record& record, uint32_t at) {
  const uint32_t value = record.field32(at);
  return (value & 0xFFFF) == unset_dos_date ? 0 : value;
}

// Deliberate: a colon at byte 17 doesn't pass. The test is of the URL as it is shown, where a comma
// has become a semicolon.
bool has_local_time_prefix(std::string_view url) {
  return url.size() > 19 && url[0] == ':' && shown_char(url[17]) == ';' &&
         shown_char(url[18]) == ' ';
}

}  // namespace

std::string source_name(const cmd_opts& opts) {
  if (!opts.input_path.empty()) return opts.input_path;
  if (!opts.partition_path.empty()) return opts.partition_path + ":\\";
  std::string source;
  for (const std::wstring& path : opts.vmdk_paths) source += zk::wide_to_utf8(path) + "; ";
  zk::drop_last(source, 2);
  return source;
}

cache_row row_from_url(const url_record& record, const cmd_opts& opts) {
  cache_row row;
  row.url = record.url;
  row.user = record.user;
  row.filename = record.filename;
  row.http_header = record.http_header;
  row.signature = record.signature();
  row.kind = static_cast<uint8_t>(opts.file_kind);
  row.local_time = opts.file_kind == file_kind::mshist || has_local_time_prefix(record.url);
  row.file_size = record.field32(url_layout::file_size);
  row.flags = record.field32(url_layout::flags);
  const uint32_t count = record.field32(url_layout::count);
  row.count = count == unset_count ? 0 : count;
  row.last_mod = filetime_field(record, url_layout::last_mod);
  row.access = filetime_field(record, url_layout::access);
  row.expires = dos_field(record, url_layout::expires);
  row.last_sync = dos_field(record, url_layout::last_sync);
  row.leak_access = dos_field(record, url_layout::leak_access);
  row.directory_index = record.fixed[url_layout::directory_index];
  row.valid = record.valid;
  return row;
}

cache_row row_from_redr(const redr_record& record, const cmd_opts& opts) {
  cache_row row;
  row.url = record.url;
  row.signature = record.signature();
  row.kind = static_cast<uint8_t>(opts.file_kind);
  row.valid = record.valid;
  return row;
}
