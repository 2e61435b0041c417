// The engine's entry: one input in, its rows out.
#pragma once

#include <ostream>

#include "front/opts/cmd_opts.h"

// Searches the input that `opts` names, a file or else a raw source, and writes the header line, if
// it is still pending, and the rows to `out`: those of a file that is read whole at its end, as are
// all with `rows_wait`, others while the input is still being searched. The header line isn't
// written for a file that can't be opened, is empty, or can't be read whole where it should be.
// From a file that is read whole, true means at least one row; from any other input, that it could
// be opened.
[[nodiscard]] bool parse_input(std::ostream& out, cmd_opts& opts);
