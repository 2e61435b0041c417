#include "tests/support/run_udx.h"

#include <sys/wait.h>

#include <cstdlib>
#include <sstream>

#include "tests/support/temp_dir.h"

const std::string wide_wipe = "\x1B[2K\r" + std::string(27, ' ') + "\r";
const std::string narrow_wipe = "\x1B[2K\r" + std::string(4, ' ') + "\r";

const std::string header_line =
    "last mod date,last mod time,access date,access time,expires date,expires time,"
    "last sync date,last sync time,type,url,user,filename,file size,directory,count,"
    "HTTP header,index.dat filename\n";

std::string message_text(const std::string& text) {
  return wide_wipe + text;
}

std::string run_result::results() const {
  size_t at = 0;
  for (int line = 0; line < 4 && at != std::string::npos; ++line) {
    at = out.find('\n', at);
    if (at != std::string::npos) ++at;
  }
  return at == std::string::npos ? "" : out.substr(at);
}

std::vector<std::string> run_result::rows() const {
  std::vector<std::string> lines;
  std::istringstream in(results());
  for (std::string line; std::getline(in, line);) {
    if (cells(line).size() == 17 && line + "\n" != header_line) lines.push_back(line);
  }
  return lines;
}

std::string shell_quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

std::vector<std::string> cells(const std::string& row, char separator) {
  std::vector<std::string> found;
  for (size_t begin = 0; begin <= row.size();) {
    const size_t end = std::min(row.find(separator, begin), row.size());
    found.push_back(row.substr(begin, end - begin));
    begin = end + 1;
  }
  return found;
}

run_result run_udx(const std::vector<std::string>& arguments, const run_setup& setup) {
  const temp_dir streams;
  const std::string in = streams.write("in", setup.input);
  const std::string out = streams.path("out");
  const std::string err = streams.path("err");
  std::string command;
  for (const auto& [name, value] : setup.environment) {
    command += "export " + name + "=" + shell_quoted(value) + "; ";
  }
  if (!setup.folder.empty()) command += "cd " + shell_quoted(setup.folder) + " && ";
  command += setup.shell + " exec " + shell_quoted(UDX_PROGRAM);
  for (const std::string& argument : arguments) command += " " + shell_quoted(argument);
  command += " <" + shell_quoted(in) + " >" + shell_quoted(out) + " 2>" + shell_quoted(err);
  const int ended = std::system(command.c_str());
  run_result result;
  result.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended);
  result.out = read_file(out);
  result.err = read_file(err);
  return result;
}
