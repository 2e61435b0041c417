// The engine's entry: one input in, its rows out.
#pragma once

#include "opts/cmd_opts.h"
#include "text/line_sink.h"

// Searches the input that `opts` names, a file or else a raw source, and writes to `out` the header
// line, if it is still pending, and the rows. Those of a file that is read whole come at its end,
// and so do all that would otherwise come before messages in the same file, or overwrite what is
// still to be read; others come while the input is being searched. A file that can't be opened, is
// empty, or should be read whole and can't be, gives no header line either. From a file that is
// read whole, true means at least one row; from any other input, that it could be opened. Throws
// std::bad_alloc if there isn't the memory; rows written so far stay.
[[nodiscard]] bool parse_input(zk::line_sink& out, cmd_opts& opts);
