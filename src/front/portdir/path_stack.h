// Paths in a stack, packed: those that were found in one folder share its text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zkportdir {

class path_stack {
 public:
  bool empty() const { return folders.empty(); }

  void clear() {
    folders.clear();
    names.clear();
  }

  // Puts the path `folder` + `name` on top, with its depth. Neither text may hold a NUL.
  void push(std::string_view folder, std::string_view name, uint32_t depth) {
    if (empty() || folders.back().path != folder || folders.back().depth != depth) {
      folders.push_back({std::string(folder), names.size(), depth});
    }
    names += '\0';
    names += name;
  }

  // Takes the path on top and returns its depth. The stack must not be empty.
  uint32_t pop(std::string& path) {
    const size_t begin = names.rfind('\0');
    const uint32_t depth = folders.back().depth;
    path = folders.back().path;
    path.append(names, begin + 1);
    names.resize(begin);
    if (begin == folders.back().first_name) folders.pop_back();
    return depth;
  }

 private:
  struct folder_names {
    std::string path;
    size_t first_name;  // where in `names` those of this folder begin
    uint32_t depth;
  };

  std::vector<folder_names> folders;
  std::string names;  // one after the other, a NUL before each
};

}  // namespace zkportdir
