// The options that name a VMware disk.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "front/arguments.h"
#include "opts/cmd_params.h"

// Checks a list of disk files. Writes its messages to `messages`, and to `suggested` the list that
// it would have accepted, if it knows one.
using disk_list_check =
    std::function<bool(const std::vector<std::wstring>& paths, std::ostream& messages,
                       std::vector<std::wstring>& suggested)>;

// Reads -vmdk and -offset, first parse_options unless `skip_common` is set, and hands the disk
// files to `check` and then, unless empty, to `second`. `name` names the option in the suggestion
// that is written to standard error with the messages of a failed check.
[[nodiscard]] bool parse_vmdk_options(cmd_params& params, argument_list& args,
                                      const disk_list_check& check, const disk_list_check& second,
                                      bool skip_common, const char* name);
