// The help text.
#pragma once

#include <string>

// Writes the help text to standard error. `path` is the program's, of which its name is shown.
void print_usage(const std::string& path);
