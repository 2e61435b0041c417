#include "front/path_match.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "front/filter_text.h"
#include "opts/cmd_params.h"
#include "opts/path_filter.h"
#include "text/path_text.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"
#include "uni/fileio.h"

namespace {

// A plain ASCII path is tested as it is and any other in wide form: the templates below take both.
std::string narrow(const std::wstring& path) {
  return zk::wide_to_utf8(path);
}
const std::string& narrow(const std::string& path) {
  return path;
}

void lower(std::wstring& text) {
  zk::to_lower_wide(text);
}
void lower(std::string& text) {
  zk::to_lower(text);
}

void turn_backslashes(std::wstring& text) {
  zk::replace_char_wide(text, L'\\', L'/');
}
void turn_backslashes(std::string& text) {
  zk::replace_char(text, '\\', '/');
}

// Where `text` first is in `where`, or npos.
template <class String>
size_t find_text(const String& where, const std::wstring& text) {
  const auto found = std::search(where.begin(), where.end(), text.begin(), text.end());
  if (found == where.end() && !text.empty()) return String::npos;
  return static_cast<size_t>(found - where.begin());
}

enum stat_kind { filetime_kind = 1, unix32_kind = 8, unix64_kind = 16 };

bool load_stat(file_stat& loaded, const std::string& path) {
  struct stat record;
  if (!uni::path_stat(path, record)) return false;
  const auto seconds = static_cast<int64_t>(record.st_mtime);
  const bool fits = seconds >= 0 && seconds <= std::numeric_limits<uint32_t>::max();
  loaded.mod_time = static_cast<uint64_t>(seconds);
  loaded.kind = fits ? unix32_kind : unix64_kind;
  return true;
}

template <class String>
bool in_time_span(const cmd_params& span, file_stat& stat, const String& path) {
  if (!span.start_time_set && !span.stop_time_set) return true;
  if (stat.mod_time == 0 && (!load_stat(stat, narrow(path)) || stat.mod_time == 0)) return false;
  if (stat.kind != filetime_kind && stat.kind != unix32_kind) return false;
  const bool as_filetime = stat.kind == filetime_kind;
  if (span.start_time_set) {
    const uint64_t start = as_filetime ? span.start_filetime : span.start_unix;
    if (stat.mod_time < start && start > stat.second_time) return false;
  }
  if (span.stop_time_set) {
    const uint64_t stop = as_filetime ? span.stop_filetime : span.stop_unix;
    if (stat.mod_time > stop || stop < stat.second_time) return false;
  }
  return true;
}

template <class String>
bool ends_at_boundary(const String& folder, size_t at, size_t length) {
  const size_t end = at + length;
  return end == folder.size() || folder[end] == '/' || folder[end] == '\0';
}

// `folder` is in lower case. Deliberate: its backslashes, once turned, stay slashes for the filters
// that follow.
template <class String>
bool folder_fits(const path_filter& filter, String& folder) {
  size_t at = find_text(folder, filter.match_text);
  if (at == String::npos && folder.find('\\') != String::npos) {
    turn_backslashes(folder);
    at = find_text(folder, filter.match_text);
  }
  return at != String::npos && ends_at_boundary(folder, at, filter.match_text.size());
}

template <class String>
bool bytes_fit(const path_filter& filter, const String& path, bool& unreadable) {
  const uni::fileio file(path);
  if (!file.is_open()) {
    unreadable = true;
    return false;
  }
  const auto size = static_cast<uint64_t>(file.size());
  const auto wanted = static_cast<uint32_t>(filter.sig_bytes.size());
  if (size < wanted || size - wanted < filter.sig_offset) return false;
  std::vector<uint8_t> found(wanted);
  uint32_t count = wanted;
  return file.read_at(found.data(), count, static_cast<int64_t>(filter.sig_offset)) &&
         count == wanted && found == filter.sig_bytes;
}

// `name` is in lower case.
template <class String>
bool name_fits(const path_filter& filter, const String& name) {
  const std::wstring& text = filter.match_text;
  if (!filter.star_front && !filter.star_back) {
    return !text.empty() && std::equal(name.begin(), name.end(), text.begin(), text.end());
  }
  const size_t at = find_text(name, text);
  if (at == String::npos) return false;
  if (filter.star_front && filter.star_back) return true;
  // Deliberate: only the first place counts, so *.dat doesn't take a.dat.dat.
  return filter.star_front ? at + text.size() == name.size() : at == 0;
}

template <class String>
bool matches(const cmd_params& span, bool& unreadable, const String& path,
             const filter_list& filters, file_stat* stat) {
  unreadable = false;
  if (path.empty()) return false;
  if (stat && !in_time_span(span, *stat, path)) return false;
  if (filters.empty() || (filters.size() == 1 && filters[0].match_all)) return true;
  String folder;
  String name;
  if (!split_path(path, folder, name)) return false;
  lower(name);
  bool folder_lowered = false;
  return std::any_of(filters.begin(), filters.end(), [&](const path_filter& filter) {
    if (filter.is_path && !folder_lowered) {
      lower(folder);
      folder_lowered = true;
    }
    if (filter.is_path && folder_fits(filter, folder)) return true;
    if (filter.match_all || name_fits(filter, name)) return true;
    const bool starred = filter.star_front || filter.star_back;
    return !starred && !filter.sig_bytes.empty() && bytes_fit(filter, path, unreadable);
  });
}

}  // namespace

bool filter_match(const cmd_params& span, bool& unreadable, const std::string& path,
                  const filter_list& filters, file_stat* stat) {
  unreadable = false;
  if (path.empty()) return false;
  if (filters.empty()) return true;
  if (zk::is_ascii(path)) return matches(span, unreadable, path, filters, stat);
  return matches(span, unreadable, zk::utf8_to_wide(path), filters, stat);
}
