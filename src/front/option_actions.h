// The options whose work is more than to set a field. Each returns false where the run must end.
#pragma once

#include <string>

#include "front/arguments.h"
#include "opts/cmd_params.h"

// What the output forms have in common: each clears these flags, sets its own and has a separator.
// Deliberate: that of -csvgen is never cleared.
void clear_output_forms(cmd_params& params);

// Opens the -diags file, writes the command line to it and takes -l2 or -l3. A file that can't be
// opened is ignored.
bool open_diags(cmd_params& params, argument_list& args, const std::string& value);

// Stores the results path. The file is opened for a test and then removed.
// Deliberate: it is removed even with -append, which therefore has no effect.
bool set_out_path(cmd_params& params, argument_list& args, const std::string& value);

// Store the pairs of -alias, and the pairs or the one path of -aliaspath.
bool add_aliases(cmd_params& params, argument_list& args, const std::string& value);
bool add_alias_paths(cmd_params& params, argument_list& args, const std::string& value);

// Set the time span. A date without a separator ends the run silently. Any other start that can't
// be read clears both ends, with a message; a stop that can't, or lies before the start, only
// itself.
bool set_start_time(cmd_params& params, argument_list& args, const std::string& value);
bool set_stop_time(cmd_params& params, argument_list& args, const std::string& value);

// Store a mask if its length, and for a time its ":", allow it; else say so and keep the default.
bool set_date_format(cmd_params& params, argument_list& args, const std::string& value);
bool set_time_format(cmd_params& params, argument_list& args, const std::string& value);

// Trims the separator unless it holds a tab, and quotes nothing.
bool enable_quoted_fields(cmd_params& params, argument_list& args, const std::string& value);

inline constexpr const char* system_version_file =
    "/System/Library/CoreServices/SystemVersion.plist";

// Reads the product version out of such a file into `params`. Nothing follows where there is none.
void read_system_version(cmd_params& params, const char* path);
