#include "front/arguments.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "text/zk_string.h"

namespace {

constexpr int32_t not_found = -1;

int32_t find_option(std::string_view name, const argument_list& args, size_t start) {
  std::string wanted(name);
  for (size_t i = start; i < args.size(); ++i) {
    std::string candidate = args[i];
    if (zk::equal_ignore_case(candidate, wanted)) return static_cast<int32_t>(i);
  }
  return not_found;
}

// The index of `name` if an entry follows it.
int32_t find_with_value(std::string_view name, const argument_list& args, size_t start) {
  const int32_t at = find_option(name, args, start);
  return at != not_found && static_cast<size_t>(at) + 1 < args.size() ? at : not_found;
}

}  // namespace

argument_list make_argument_list(int argc, const char* const* argv) {
  argument_list args;
  for (int i = 0; i < argc; ++i) args.emplace_back(argv[i] ? argv[i] : "");
  return args;
}

bool has_option(std::string_view name, const argument_list& args, uint8_t start) {
  return find_option(name, args, start) != not_found;
}

bool get_option_value(std::string_view name, std::string& value, const argument_list& args,
                      uint8_t start) {
  const int32_t at = find_with_value(name, args, start);
  if (at == not_found) return false;
  value = args[static_cast<size_t>(at) + 1];
  return true;
}

bool take_flag(std::string_view name, argument_list& args, bool keep) {
  const int32_t at = find_option(name, args, 0);
  if (at == not_found) return false;
  if (!keep) drop_argument(at, args);
  return true;
}

bool take_option(std::string_view name, std::string& value, argument_list& args) {
  const int32_t at = find_with_value(name, args, 0);
  if (at == not_found) return false;
  value = args[static_cast<size_t>(at) + 1];
  drop_argument(at + 1, args);
  drop_argument(at, args);
  return true;
}

void drop_argument(int32_t index, argument_list& args) {
  if (index >= 0 && static_cast<size_t>(index) < args.size()) args.erase(args.begin() + index);
}

void make_cmdline(std::string& out, const argument_list& args, char quote) {
  out.clear();
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& argument = args[i];
    if (i != 0) out += ' ';
    const bool quoted = argument.find(' ') != std::string::npos;
    if (quoted) out += quote;
    out += argument;
    if (quoted) out += quote;
  }
}
