// The options that set the run's parameters.
#pragma once

#include "front/arguments.h"
#include "opts/cmd_params.h"

// Reads all options but -partition, -vmdk, -offset, -f, -locale, -utf8_bom and -append into
// `params`, in a fixed order and not in that of the arguments, and removes what it reads from
// `args`. -l2 and -l3 are read beside -diags alone, -filter_path beside a filter. Unknown options
// stay there, unnoticed. False ends the run; what is to be said was said on standard error.
[[nodiscard]] bool parse_options(cmd_params& params, argument_list& args);
