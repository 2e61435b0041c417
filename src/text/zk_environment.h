// Expansion of environment names in text.
#pragma once

#include <string>

namespace zk {

// Replaces each %NAME% in `text` by the variable's value, in place, and returns the text. A value
// is expanded in turn. A set but empty variable counts; an unknown name stays as it is, but
// for %vss% with `allow_vss`, which becomes shadow_copy_prefix(false, true). A text longer than
// 512 characters isn't touched, and expansion stops where it grows longer. Values that name each
// other in a circle end after about a million replacements.
std::string& expand_environment(std::string& text, bool allow_vss);

// The Windows device name of a volume's shadow copy, without its number: with `global_root` in
// its full form, with `lower_case` all lower-cased.
std::string shadow_copy_prefix(bool lower_case, bool global_root);

}  // namespace zk
