#include "text/path_text.h"

#include <cstddef>
#include <string>
#include <utility>

#include "text/zk_environment.h"

namespace {

template <class String>
bool split(const String& path, String& folder, String& name) {
  using character = typename String::value_type;
  folder.clear();
  name.clear();
  if (path.empty()) return false;
  const String two_dots(2, character('.'));
  for (const char separator : {'\\', '/'}) {
    const size_t at = path.rfind(character(separator));
    if (at == 0 || at == String::npos) continue;
    folder = path.substr(0, at);
    name = path.substr(at + 1);
    if (name == two_dots) {
      name.pop_back();
      folder.append(separator == '/' ? 2 : 1, character(separator));
      folder += two_dots;
    }
    return true;
  }
  folder = character('.');
  name = path;
  return true;
}

}  // namespace

std::string expand_env(std::string path, bool vss) {
  return std::move(zk::expand_environment(path, vss));
}

bool split_path(const std::string& path, std::string& folder, std::string& name) {
  return split(path, folder, name);
}

bool split_path(const std::wstring& path, std::wstring& folder, std::wstring& name) {
  return split(path, folder, name);
}
