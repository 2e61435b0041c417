#include "front/portdir/zk_portable_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "text/path_text.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace zkportdir {
namespace {

constexpr const char* every_name = "*.*";

// A file name's two parts, around its last dot. An empty part of a pattern means "*".
struct name_parts {
  std::string name;
  std::string extension;
};

bool split_name(const std::string& path, name_parts& parts) {
  std::string folder;
  if (!split_path(path, folder, parts.name)) return false;
  zk::to_lower(parts.name);
  const size_t dot = parts.name.rfind('.');
  parts.extension = dot == std::string::npos ? "" : parts.name.substr(dot + 1);
  parts.name.erase(std::min(dot, parts.name.size()));
  return true;
}

bool part_fits(const std::string& pattern, const std::string& part) {
  return pattern.empty() || fnmatch(pattern.c_str(), part.c_str(), 0) == 0;
}

bool fits(const _DIR_NODE_STL& node, const name_parts& pattern) {
  name_parts parts;
  return split_name(node.path, parts) && part_fits(pattern.extension, parts.extension) &&
         part_fits(pattern.name, parts.name);
}

// Tells folders from files. If a type can't be read, the previous entry's type is used, and for the
// first entry that of a file.
// Deliberate: also for a path that is too long for the system, though the listing may tell.
class entry_types {
 public:
  entry_types(DIR* stream, const std::string& folder)
      : descriptor(::dirfd(stream)), by_path(folder.back() != '/') {
    // In a folder that may be read but not searched, no entry can be asked about, and then the
    // types that the listing tells must not count either.
    struct stat facts;
    listing_tells = !by_path && ::fstatat(descriptor, ".", &facts, 0) == 0;
  }

  // Whether the entry is a folder. `path` is the folder's text followed by the entry's name.
  bool is_dir(const dirent& entry, const std::string& path) {
    if (path.size() >= PATH_MAX) return last_is_dir;
    struct stat facts;
    if (listing_tells && entry.d_type != DT_UNKNOWN) {
      last_is_dir = entry.d_type == DT_DIR;
    } else if (ask(entry, path, facts)) {
      last_is_dir = S_ISDIR(facts.st_mode);
    }
    return last_is_dir;
  }

 private:
  bool ask(const dirent& entry, const std::string& path, struct stat& facts) const {
    if (by_path) return ::lstat(path.c_str(), &facts) == 0;
    return ::fstatat(descriptor, entry.d_name, &facts, AT_SYMLINK_NOFOLLOW) == 0;
  }

  int descriptor;
  // Asks about the joined path: the folder was cut at a star, so that this path isn't in it, or
  // ends in a backslash.
  bool by_path;
  bool listing_tells;
  bool last_is_dir = false;
};

constexpr char dir_mark = 'd';
constexpr char file_mark = 'f';

// The names in a folder, each between a mark of its type and a NUL.
std::string read_names(const std::string& folder, bool dirs_only) {
  std::string names;
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), ::closedir);
  // A folder that can't be opened gives nothing. Lack of memory is another matter.
  if (!stream && errno == ENOMEM) throw std::bad_alloc();
  if (!stream) return names;
  entry_types types(stream.get(), folder);
  std::string path = folder;
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    path.resize(folder.size());
    path += name;
    const bool is_dir = types.is_dir(*entry, path);
    if (!is_dir && dirs_only) continue;
    names += is_dir ? dir_mark : file_mark;
    names += name;
    names += '\0';
  }
  return names;
}

}  // namespace

bool read_folder(const std::string& folder, bool dirs_only, bool slash, const node_sink& take) {
  const std::string names = read_names(folder, dirs_only);
  _DIR_NODE_STL node;
  node.path = folder;
  node.name_at = folder.size();
  for (size_t at = 0; at < names.size();) {
    const std::string_view name = names.c_str() + at + 1;
    node.is_dir = names[at] == dir_mark;
    node.path.resize(node.name_at);
    node.path += name;
    if (node.is_dir) node.path += slash ? '/' : '\\';
    take(node);
    at += name.size() + 2;
  }
  return !names.empty();
}

bool expand_wild_folders(std::vector<std::string>& folders, bool slash,
                         std::set<std::string>& expanded) {
  const std::string marker = slash ? "/*/" : "\\*\\";
  const size_t count = folders.size();
  bool done = false;
  for (size_t i = 0; i < count; ++i) {
    const std::string path = folders[i];
    const size_t at = path.find(marker);
    if (at == std::string::npos) continue;
    done = true;
    folders[i].clear();
    // A folder whose name is "*" would bring its own path back for ever.
    if (!expanded.insert(path).second) continue;
    const std::string tail = path.substr(at + marker.size());
    read_folder(path.substr(0, at + 1), true, slash, [&](const _DIR_NODE_STL& node) {
      if (folders[i].empty()) {
        folders[i] = node.path + tail;
      } else {
        folders.push_back(node.path + tail);
      }
    });
  }
  return done;
}

void list_dir(const std::string& folder, const std::string& pattern, const node_sink& take) {
  if (folder.empty()) return;
  const bool slash = folder.find('/') != std::string::npos;
  const char separator = slash ? '/' : '\\';
  std::vector<std::string> folders = {folder};
  if (folder.back() != separator) folders[0] += separator;
  std::set<std::string> expanded;
  while (expand_wild_folders(folders, slash, expanded)) {
  }
  const bool takes_all = pattern.empty() || pattern == every_name;
  name_parts wanted;
  split_name(pattern, wanted);
  for (const std::string& path : folders) {
    if (path.empty()) continue;
    read_folder(path.substr(0, path.find('*')), false, slash, [&](const _DIR_NODE_STL& node) {
      // A name in an overlong form would come back from its wide form as another, such as "..".
      if (!zk::is_exact_utf8(node.path)) return;
      if (takes_all || node.is_dir || fits(node, wanted)) take(node);
    });
  }
}

}  // namespace zkportdir
