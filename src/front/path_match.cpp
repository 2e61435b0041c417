#include "front/path_match.h"

#include <sys/stat.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "text/path_text.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"
#include "uni/fileio.h"

namespace {

enum stat_kind { filetime_kind = 1, unix32_kind = 8, unix64_kind = 16 };

bool load_stat(file_stat& loaded, const std::wstring& path) {
  struct stat record;
  if (!uni::path_stat(zk::wide_to_utf8(path), record)) return false;
  const auto seconds = static_cast<int64_t>(record.st_mtime);
  const bool fits = seconds >= 0 && seconds <= std::numeric_limits<uint32_t>::max();
  loaded.mod_time = static_cast<uint64_t>(seconds);
  loaded.kind = fits ? unix32_kind : unix64_kind;
  return true;
}

bool in_time_span(const cmd_params& span, file_stat& stat, const std::wstring& path) {
  if (!span.start_time_set && !span.stop_time_set) return true;
  if (stat.mod_time == 0 && (!load_stat(stat, path) || stat.mod_time == 0)) return false;
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

bool ends_at_boundary(const std::wstring& folder, size_t at, size_t length) {
  const size_t end = at + length;
  return end == folder.size() || folder[end] == L'/' || folder[end] == L'\0';
}

// `folder` is in lower case.
bool folder_fits(const path_filter& filter, std::wstring folder) {
  size_t at = folder.find(filter.match_text);
  if (at == std::wstring::npos && folder.find(L'\\') != std::wstring::npos) {
    zk::replace_char_wide(folder, L'\\', L'/');
    at = folder.find(filter.match_text);
  }
  return at != std::wstring::npos && ends_at_boundary(folder, at, filter.match_text.size());
}

bool bytes_fit(const path_filter& filter, const std::wstring& path, bool& unreadable) {
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
bool name_fits(const path_filter& filter, const std::wstring& name) {
  const std::wstring& text = filter.match_text;
  if (filter.star_front && filter.star_back) return name.find(text) != std::wstring::npos;
  if (filter.star_back) return name.starts_with(text);
  if (filter.star_front) {
    // Deliberate: only the first place counts, so *.dat doesn't take a.dat.dat.
    const size_t at = name.find(text);
    return at != std::wstring::npos && at + text.size() == name.size();
  }
  return !text.empty() && name == text;
}

}  // namespace

bool filter_match(const cmd_params& span, const std::string& path, const filter_list& filters,
                  file_stat& stat) {
  if (path.empty()) return false;
  if (filters.empty()) return true;
  bool unreadable = false;
  return filter_match_wide(span, unreadable, zk::utf8_to_wide(path), filters, &stat);
}

bool filter_match_wide(const cmd_params& span, bool& unreadable, const std::wstring& path,
                       const filter_list& filters, file_stat* stat) {
  unreadable = false;
  if (path.empty()) return false;
  if (stat && !in_time_span(span, *stat, path)) return false;
  if (filters.empty() || (filters.size() == 1 && filters[0].match_all)) return true;
  std::wstring folder;
  std::wstring name;
  if (!split_path(path, folder, name)) return false;
  zk::to_lower_wide(name);
  bool folder_lowered = false;
  return std::any_of(filters.begin(), filters.end(), [&](const path_filter& filter) {
    if (filter.is_path && !folder_lowered) {
      zk::to_lower_wide(folder);
      folder_lowered = true;
    }
    if (filter.is_path && folder_fits(filter, folder)) return true;
    if (filter.match_all || name_fits(filter, name)) return true;
    const bool starred = filter.star_front || filter.star_back;
    return !starred && !filter.sig_bytes.empty() && bytes_fit(filter, path, unreadable);
  });
}
