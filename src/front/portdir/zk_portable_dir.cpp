#include "front/portdir/zk_portable_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "text/path_text.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace zkportdir {
namespace {

constexpr const char* every_name = "*.*";

// A file name's two parts, around its last dot. An empty part stands for "*" in a pattern.
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

std::vector<_DIR_NODE_STL> list_narrow(std::string folder, const std::string& pattern) {
  std::vector<_DIR_NODE_STL> entries;
  if (folder.empty()) return entries;
  const bool slash = folder.find('/') != std::string::npos;
  const char separator = slash ? '/' : '\\';
  if (folder.back() != separator) folder += separator;
  std::vector<std::string> folders = {folder};
  std::set<std::string> expanded;
  while (expand_wild_folders(folders, slash, expanded)) {
  }
  for (const std::string& path : folders) {
    if (!path.empty()) read_folder(path.substr(0, path.find('*')), entries, 0, false, slash);
  }
  if (!pattern.empty() && pattern != every_name) {
    name_parts wanted;
    split_name(pattern, wanted);
    std::erase_if(entries,
                  [&](const _DIR_NODE_STL& node) { return !node.is_dir && !fits(node, wanted); });
  }
  return entries;
}

// The text in wide form, or nothing if it isn't plain UTF-8: a name in an overlong form would come
// back as another, such as "..".
std::wstring exact_wide(const std::string& text) {
  std::wstring wide = zk::utf8_to_wide(text);
  if (zk::wide_to_utf8(wide) != text) wide.clear();
  return wide;
}

}  // namespace

bool read_folder(const std::string& folder, std::vector<_DIR_NODE_STL>& out, uint32_t depth,
                 bool dirs_only, bool slash) {
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), ::closedir);
  if (!stream) return false;
  const size_t before = out.size();
  struct stat facts = {};  // an entry that can't be asked has the mode of the one before it
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    _DIR_NODE_STL node;
    node.path = folder + name;
    // The joined path is what is asked about, and it lies elsewhere if the folder was cut at a
    // star.
    if (folder.back() == '/') {
      ::fstatat(::dirfd(stream.get()), entry->d_name, &facts, AT_SYMLINK_NOFOLLOW);
    } else {
      ::lstat(node.path.c_str(), &facts);
    }
    node.is_dir = S_ISDIR(facts.st_mode);
    if (!node.is_dir && dirs_only) continue;
    node.depth = depth;
    if (node.is_dir) {
      node.path += slash ? '/' : '\\';
      ++node.depth;
    } else {
      node.name = name;
    }
    node.is_long_path = node.path.size() > 4 && node.path.starts_with("\\\\?\\");
    out.push_back(std::move(node));
  }
  return out.size() != before;
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
    std::vector<_DIR_NODE_STL> found;
    read_folder(path.substr(0, at + 1), found, 0, true, slash);
    const std::string tail = path.substr(at + marker.size());
    for (size_t n = 0; n < found.size(); ++n) {
      std::string target = found[n].path + tail;
      if (n == 0) {
        folders[i] = std::move(target);
      } else {
        folders.push_back(std::move(target));
      }
    }
  }
  return done;
}

void list_dir(const std::wstring& folder, const std::wstring& pattern,
              std::vector<_DIR_NODE>& out) {
  out.clear();
  for (const _DIR_NODE_STL& node :
       list_narrow(zk::wide_to_utf8(folder), zk::wide_to_utf8(pattern))) {
    out.push_back(
        {exact_wide(node.path), exact_wide(node.name), node.is_dir, node.is_long_path, node.depth});
  }
}

}  // namespace zkportdir
