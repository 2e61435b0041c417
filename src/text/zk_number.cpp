#include "text/zk_number.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "text/zk_string.h"

namespace zk {
namespace {

bool begins_decimal(char c) {
  return (c >= '0' && c <= '9') || c == '+' || c == '-';
}

}  // namespace

bool read_number(const char* text, uint32_t& number) {
  number = 0;
  if (!text) return false;
  std::string copy = text;
  to_lower(copy);
  if (!trim(copy)) return false;

  const auto read = [&](const char* digits, int base) {
    number = static_cast<uint32_t>(std::strtoull(digits, nullptr, base));
    return true;
  };
  if (copy.size() > 1 && copy[1] == 'x') return read(text + 2, 16);
  if (copy[0] == 'x') return read(text + 1, 16);
  if (copy[0] == 'o') return read(text + 1, 8);
  if (begins_decimal(text[0])) return read(text, 10);
  if (std::strlen(text) == 3 && text[0] == '\'' && text[2] == '\'') {
    number = static_cast<uint8_t>(text[1]);
    return true;
  }
  return false;
}

bool read_number_long(std::string& text, int64_t& number) {
  number = 0;
  to_lower(text);
  if (!trim(text)) return false;
  int base = 10;
  if (const size_t x = text.find('x'); x != std::string::npos) {
    text.erase(0, x + 1);
    base = 16;
  } else if (const size_t o = text.find('o'); o != std::string::npos) {
    text.erase(0, o + 1);
    base = 8;
  } else if (!begins_decimal(text[0])) {
    return false;
  }
  number = std::strtoll(text.c_str(), nullptr, base);
  return true;
}

}  // namespace zk
