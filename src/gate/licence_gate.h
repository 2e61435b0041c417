// The licence gate: what the driver asks before it continues. This edition allows everything and
// adds nothing; the calls keep their places so that another gate can replace it.
#pragma once

#include <array>
#include <string_view>

namespace licence_gate {

// Whether the run may continue.
bool allows_run();

// Whether the option of this name may be used.
bool allows_option(std::string_view name);

// Shows the gate each file before it is parsed, the program's own first.
void see_file(std::string_view path);

// The word after the program's name in the banner.
std::string_view edition();

// The two lines before the help text.
std::array<const char*, 2> identification();

}  // namespace licence_gate
