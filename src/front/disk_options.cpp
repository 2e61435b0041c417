#include "front/disk_options.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "front/arguments.h"
#include "front/option_table.h"
#include "opts/cmd_params.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

bool parse_vmdk_options(cmd_params& params, argument_list& args, const disk_list_check& check,
                        const disk_list_check& second, bool skip_common, const char* name) {
  if (args.empty() || (!skip_common && !parse_options(params, args))) return false;
  std::string value;
  if (!take_option("-vmdk", value, args)) return true;
  params.vmdk_paths = zk::split_trimmed_wide(zk::utf8_to_wide(value), L"|,;");
  while (take_option("-vmdk", value, args)) params.vmdk_paths.push_back(zk::utf8_to_wide(value));
  if (take_option("-offset", value, args)) {
    int64_t offset = 0;
    zk::read_number_long(value, offset);
    params.vmdk_offset = static_cast<uint64_t>(offset);
  }
  for (const disk_list_check& each : {check, second}) {
    if (!each) continue;
    std::ostringstream messages;
    messages.exceptions(std::ios::badbit);  // too little memory would cut the text
    std::vector<std::wstring> suggested;
    if (each(params.vmdk_paths, messages, suggested)) continue;
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
