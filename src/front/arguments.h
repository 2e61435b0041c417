// Operations on the argument list. Options are found by name, without regard to case, and the
// whole word counts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The program's arguments as byte strings, its own name first. Options are found by name and
// removed.
using argument_list = std::vector<std::string>;

// One entry for each of `argv`; a null one becomes empty.
argument_list make_argument_list(int argc, const char* const* argv);

// Whether `name` is at index `start` or later.
bool has_option(std::string_view name, const argument_list& args, uint8_t start);

// The entry after `name`, which is looked for from `start` on. False if it is the last entry or
// isn't there; `value` then stays.
bool get_option_value(std::string_view name, std::string& value, const argument_list& args,
                      uint8_t start);

// Whether `name` is there. It is removed unless `keep` is set.
bool take_flag(std::string_view name, argument_list& args, bool keep = false);

// As get_option_value from index 0, and removes both entries. The value may look like an option. A
// name without a value stays in the list.
bool take_option(std::string_view name, std::string& value, argument_list& args);

// Removes the entry at `index`, if there is one.
void drop_argument(int32_t index, argument_list& args);

// Replaces `out` by the arguments, joined by a blank; one that holds a blank is put in `quote`s.
void make_cmdline(std::string& out, const argument_list& args, char quote);
