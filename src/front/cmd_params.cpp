#include "front/opts/cmd_params.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>

#include "front/arguments.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

bool cmd_params::parse_vmdk_options(argument_list& args, const disk_list_check& check,
                                    const disk_list_check& second, bool skip_common,
                                    const char* name) {
  if (args.empty() || (!skip_common && !parse_options(args))) return false;
  std::string value;
  if (!take_option("-vmdk", value, args)) return true;
  vmdk_paths = zk::split_trimmed_wide(zk::utf8_to_wide(value), L"|,;");
  while (take_option("-vmdk", value, args)) vmdk_paths.push_back(zk::utf8_to_wide(value));
  if (take_option("-offset", value, args)) {
    int64_t offset = 0;
    zk::read_number_long(value, offset);
    vmdk_offset = static_cast<uint64_t>(offset);
  }
  for (const disk_list_check& each : {check, second}) {
    if (!each) continue;
    std::ostringstream messages;
    messages.exceptions(std::ios::badbit);  // too little memory would cut the text
    std::vector<std::wstring> suggested;
    if (each(vmdk_paths, messages, suggested)) continue;
    messages << '\n';
    if (!suggested.empty()) {
      messages << "suggested array: " << name << " \"";
      for (size_t i = 0; i < suggested.size(); ++i) {
        messages << (i == 0 ? "" : " | ") << zk::wide_to_utf8(suggested[i]);
      }
      messages << "\"\n";
    }
    std::cerr << messages.str();
    return false;
  }
  return true;
}

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
    csv_separator = "\t";
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
