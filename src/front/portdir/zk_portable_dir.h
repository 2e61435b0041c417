// Listing of one folder.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace zkportdir {

// One entry of a folder. A folder's own path ends in its separator, and its name is empty.
template <class String>
struct dir_node {
  String path;  // the whole path
  String name;
  bool is_dir = false;
  bool is_long_path = false;  // the path begins with "\\?\"; nothing reads it
  uint32_t depth = 0;         // nothing reads it
};

using _DIR_NODE = dir_node<std::wstring>;
using _DIR_NODE_STL = dir_node<std::string>;

// Appends the entries of `folder`, which must end in its separator, in the system's order. "." and
// ".." are left out; links aren't followed. Subfolders get the separator, a slash or a backslash,
// and the next depth. False if there are none or the folder can't be read.
bool read_folder(const std::string& folder, std::vector<_DIR_NODE_STL>& out, uint32_t depth,
                 bool dirs_only, bool slash);

// Replaces each path with a folder "*" in it by one path for each real folder in that place; a path
// without any, and one that is in `expanded` already, becomes empty. False if there was nothing to
// do; else call again, for the next "*".
bool expand_wild_folders(std::vector<std::string>& folders, bool slash,
                         std::set<std::string>& expanded);

// Lists the entries of `folder` whose name and extension fit `pattern`, without regard to case;
// folders always fit. The folder may hold folders "*", and is otherwise cut at a "*". Its separator
// is the slash if it holds one, else the backslash. An entry whose name isn't UTF-8 has empty
// texts.
void list_dir(const std::wstring& folder, const std::wstring& pattern, std::vector<_DIR_NODE>& out);

}  // namespace zkportdir
