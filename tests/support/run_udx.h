// Runs the real program as a user would.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "tests/support/case_file.h"
#include "tests/support/temp_dir.h"

struct run_result {
  std::string out, err;
  int status;  // as a shell sees it; 128 and more for a signal
};

inline std::string quoted(const std::string& text) {
  std::string made = "'";
  for (const char c : text) made += c == '\'' ? "'\\''" : std::string(1, c);
  return made + "'";
}

// Runs the program behind a shell's `setup`.
inline run_result run_udx(const strings& arguments, const std::string& setup = "",
                          const std::string& input = "") {
  const temp_dir streams;
  std::string command = setup + " exec " + quoted(UDX_PROGRAM);
  for (const std::string& argument : arguments) command += " " + quoted(argument);
  command += " <" + streams.write("in", input) + " >" + streams.path("out");
  const int ended = std::system((command + " 2>" + streams.path("err")).c_str());
  return {read_file(streams.path("out")), read_file(streams.path("err")),
          WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended)};
}
