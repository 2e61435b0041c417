#include "text/zk_environment.h"

#include <cstdlib>
#include <string>

#include "text/zk_string.h"

namespace zk {

std::string& expand_environment(std::string& text, bool allow_vss) {
  constexpr size_t longest = 512;
  // A value that names itself would never end. The text holds at most 170 names at a time, and each
  // of them may lead through 6,000 others before this bound is met. To reach it takes a fraction of
  // a second in an environment of usual size.
  constexpr int most_replacements = 1 << 20;
  size_t from = 0;
  int replacements = 0;
  while (text.size() <= longest && replacements < most_replacements) {
    const size_t open = text.find('%', from);
    if (open == std::string::npos) break;
    const size_t close = text.find('%', open + 1);
    if (close == std::string::npos) break;
    std::string name = text.substr(open + 1, close - open - 1);
    if (const char* value = std::getenv(name.c_str())) {
      text.replace(open, close - open + 1, value);
      ++replacements;
      continue;
    }
    if (allow_vss && to_lower(name) == "vss") {
      text.replace(open, close - open + 1, shadow_copy_prefix(false, true));
    }
    from = close + 1;
  }
  return text;
}

std::string shadow_copy_prefix(bool lower_case, bool global_root) {
  std::string prefix = global_root ? "\\\\?\\GLOBALROOT" : "";
  prefix += "\\Device\\HarddiskVolumeShadowCopy";
  return lower_case ? to_lower(prefix) : prefix;
}

}  // namespace zk
