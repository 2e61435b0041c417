// Runs the real program as a user would.
#pragma once

#include <map>
#include <string>
#include <vector>

struct run_result {
  std::string out;
  std::string err;
  int status = -1;  // as a shell sees it; 128 and more for a signal

  // Standard output without the run's own three lines and the empty line behind them.
  std::string results() const;
  // Its rows: what has 17 cells, less the header line.
  std::vector<std::string> rows() const;
};

struct run_setup {
  std::string input = "";                               // on standard input
  std::map<std::string, std::string> environment = {};  // added to the test's own
  std::string folder = "";                              // to run in
  std::string shell = "";                               // commands ahead of the program's start
};

run_result run_udx(const std::vector<std::string>& arguments, const run_setup& setup = {});

// What standard error holds where a line is wiped, and where a message stands.
extern const std::string wide_wipe;
extern const std::string narrow_wipe;
std::string message_text(const std::string& text);

// The header line of every run with the default separator.
extern const std::string header_line;

// The cells of a row.
std::vector<std::string> cells(const std::string& row, char separator = ',');

// Puts a name in single quotes for the shell.
std::string shell_quoted(const std::string& text);
