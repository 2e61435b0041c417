#include "front/portdir/stdin_stream_ex.h"

#include <utility>
#include <vector>

#include "front/path_match.h"
#include "front/portdir/zk_portable_dir.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace zkportdir {
namespace {

constexpr size_t shortest_prefixed = 5;
constexpr size_t shortest_long_path = 47;
constexpr size_t prefix_size = 4;  // "\\?\"

void cut_long_path_prefix(std::wstring& path) {
  if (path.size() < shortest_prefixed || !path.starts_with(L"\\\\")) return;
  if (path.size() < shortest_long_path) return;
  std::wstring copy = path;
  if (zk::to_lower_wide(copy).find(L"global") != prefix_size) path.erase(0, prefix_size);
}

}  // namespace

void stdin_stream_ex::reset() {
  pending_dirs.clear();
  pending_files.clear();
  max_depth = 1;
  walk_filters.clear();
  walking = false;
}

bool stdin_stream_ex::open_walk(const std::string& folder, uint32_t num_subdirs,
                                const filter_list& filters) {
  if (folder.empty()) return false;
  std::wstring wide = zk::utf8_to_wide(folder);
  reset();
  max_depth = num_subdirs;
  walk_filters = filters;
  if (accept_path(wide, true)) pending_dirs.push_back({std::move(wide), 0});
  walking = true;
  return true;
}

bool stdin_stream_ex::read_line(std::string& out, bool strip_line_end) {
  if (!walking) return stdin_stream::read_line(out, strip_line_end);
  std::wstring path;
  const bool found = next_from_walk(path);
  out = zk::wide_to_utf8(path);
  return found;
}

bool stdin_stream_ex::next_from_walk(std::wstring& out) {
  out.clear();
  pending_dir folder;
  while (pending_files.empty()) {
    if (!next_folder(folder)) return false;
    list_folder(folder);
  }
  out = std::move(pending_files.back());
  pending_files.pop_back();
  return true;
}

bool stdin_stream_ex::next_folder(pending_dir& next) {
  while (!pending_dirs.empty()) {
    next = std::move(pending_dirs.back());
    pending_dirs.pop_back();
    if (next.depth <= max_depth) return true;
  }
  return false;
}

void stdin_stream_ex::list_folder(const pending_dir& folder) {
  std::wstring path = folder.path;
  if (!accept_path(path, true)) return;
  std::vector<_DIR_NODE> entries;
  list_dir(path, L"*.*", entries);
  for (_DIR_NODE& entry : entries) {
    if (entry.is_dir) {
      pending_dirs.push_back({std::move(entry.path), folder.depth + 1});
    } else if (accept_path(entry.path, false)) {
      pending_files.push_back(std::move(entry.path));
    }
  }
}

bool stdin_stream_ex::accept_path(std::wstring& path, bool skip_filter) const {
  if (!skip_filter && !walk_filters.empty()) {
    bool unreadable = false;
    if (!filter_match_wide(no_span, unreadable, path, walk_filters, nullptr) && !unreadable) {
      return false;
    }
  }
  cut_long_path_prefix(path);
  return true;
}

}  // namespace zkportdir
