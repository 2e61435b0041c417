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

// Runs a shell's lines, with standard streams and no other open.
inline run_result run_shell(const std::string& lines) {
  const temp_dir streams;
  const std::string out = streams.path("out"), err = streams.path("err");
  const int ended =
      std::system(("exec </dev/null 3>&- >" + out + " 2>" + err + "\n" + lines).c_str());
  return {read_file(out), read_file(err),
          WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended)};
}

inline run_result run_udx(const strings& arguments) {
  std::string line = quoted(UDX_PROGRAM);
  for (const std::string& argument : arguments) line += " " + quoted(argument);
  return run_shell(line);
}
