// Listing of one folder.
#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace zkportdir {

// One entry of a folder.
struct _DIR_NODE_STL {
  std::string path;    // the whole path; that of a folder ends in its separator
  size_t name_at = 0;  // where in `path` the entry's own name begins
  bool is_dir = false;
};

// Gets each entry of a listing in turn; the entry is used again for the next.
using node_sink = std::function<void(const _DIR_NODE_STL&)>;

// Lists `folder`, which must end in its separator, in the system's order. The folder is read to its
// end and closed before `take` gets the first entry. "." and ".." are left out, and all but folders
// if `dirs_only` is set; links aren't followed. Subfolders get the separator, a slash or a
// backslash. False if there are no entries or the folder can't be read.
bool read_folder(const std::string& folder, bool dirs_only, bool slash, const node_sink& take);

// Replaces each path with a folder "*" in it by one path for each real folder in that place. A
// starred path that matches no folder, or is in `expanded` already, becomes empty. False if no path
// had a star; else call again, for the next one.
bool expand_wild_folders(std::vector<std::string>& folders, bool slash,
                         std::set<std::string>& expanded);

// Lists the entries of `folder` whose name and extension fit `pattern`, without regard to case;
// folders always fit. The folder may hold folders "*", and is otherwise cut at a "*". Its separator
// is the slash if it holds one, else the backslash. An entry whose path isn't plain UTF-8 is left
// out.
void list_dir(const std::string& folder, const std::string& pattern, const node_sink& take);

}  // namespace zkportdir
