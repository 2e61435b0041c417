#include "opts/cmd_params.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "text/zk_string.h"

void cmd_params::set_separator(const std::string& text, bool semicolon) {
  csv_separator = text;
  delim_char = delim_subst = 0;
  if (quoted_csv_fields) return;
  std::string copy = text;
  zk::to_lower(copy);
  if (copy.find('|') != std::string::npos) {
    delim_char = '|';
    delim_subst = ';';
  } else if (copy.find(',') != std::string::npos) {
    delim_char = ',';
    delim_subst = semicolon ? ';' : ' ';
  } else if (copy == "tab" || copy == "\\t") {
    csv_separator = '\t';
  }
}

void cmd_params::diag_write(const std::string& text) {
  if (!diag_on || !diag_stream || !diag_stream->good()) return;
  *diag_stream << "->" << text << std::endl;
}

void cmd_params::diag_printf(const char* format, ...) {
  if (!diag_on) return;
  // What the text may take beyond its format; a longer one is cut.
  constexpr size_t spare = 256;
  std::vector<char> text(std::strlen(format) + spare);
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  diag_write(text.data());
}
