// Where every run begins: the steps of a run, in their order.
#pragma once

// The statuses that a run can end with. A shell sees `run_failed` as 255.
inline constexpr int run_done = 0;
inline constexpr int run_failed = -1;

// Runs the program once and returns its status. Where memory runs out, but for that of an input,
// says so on standard error and returns `run_failed`; results so far are kept.
int run(int argc, const char* const* argv);
