// The block of lines at the top of the results: what ran, when, where and with which arguments.
#pragma once

#include <string>

#include "front/arguments.h"
#include "time/zk_time.h"

// The program's name, its version and who makes it.
std::string banner_line();

// The whole block, each line ended. `args` are those of the run, none removed yet.
std::string make_run_header(const argument_list& args, const zk::time& launch_time);
