#include "front/portdir/stdin_stream_ex.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "front/path_match.h"
#include "front/portdir/zk_portable_dir.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace zkportdir {
namespace {

constexpr size_t shortest_long_path = 47;  // in characters
constexpr size_t prefix_size = 4;          // "\\?\"

// A long path that begins with two backslashes loses its first four characters, unless "global"
// follows them.
void cut_long_path_prefix(std::wstring& path) {
  if (path.size() < shortest_long_path || !path.starts_with(L"\\\\")) return;
  std::wstring copy = path;
  if (zk::to_lower_wide(copy).find(L"global") != prefix_size) path.erase(0, prefix_size);
}

void cut_long_path_prefix(std::string& path) {
  if (!path.starts_with("\\\\")) return;
  std::wstring wide = zk::utf8_to_wide(path);
  cut_long_path_prefix(wide);
  path = zk::wide_to_utf8(wide);
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
  reset();
  max_depth = num_subdirs;
  walk_filters = filters;
  walking = true;
  std::wstring start = zk::utf8_to_wide(folder);
  // Deliberate: the folder that a walk starts from may lose a prefix twice, any other once.
  cut_long_path_prefix(start);
  cut_long_path_prefix(start);
  list_folder(zk::wide_to_utf8(start), 0);
  return true;
}

bool stdin_stream_ex::getline(std::string& out, bool strip_line_end) {
  return walking ? next_from_walk(out) : read_line(out, strip_line_end);
}

bool stdin_stream_ex::next_from_walk(std::string& out) {
  out.clear();
  std::string folder;
  while (pending_files.empty()) {
    if (pending_dirs.empty()) return false;
    const uint32_t depth = pending_dirs.pop(folder);
    cut_long_path_prefix(folder);
    list_folder(folder, depth);
  }
  pending_files.pop(out);
  cut_long_path_prefix(out);
  return true;
}

void stdin_stream_ex::list_folder(const std::string& folder, uint32_t depth) {
  list_dir(folder, "*.*", [&](const _DIR_NODE_STL& entry) {
    const std::string_view path = entry.path;
    const std::string_view parent = path.substr(0, entry.name_at);
    const std::string_view name = path.substr(entry.name_at);
    if (!entry.is_dir) {
      if (accept_path(entry.path)) pending_files.push(parent, name, depth);
    } else if (depth < max_depth) {
      pending_dirs.push(parent, name, depth + 1);
    }
  });
}

bool stdin_stream_ex::accept_path(const std::string& path) const {
  bool unreadable = false;
  return filter_match(no_span, unreadable, path, walk_filters, nullptr) || unreadable;
}

}  // namespace zkportdir
