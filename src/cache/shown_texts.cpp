#include "cache/record_texts.h"

#include <algorithm>
#include <cstdint>

#include "text/zk_string.h"

namespace {

// The value, or 0. A mask, since a choice makes for longer vector code.
constexpr uint8_t only_if(bool condition, uint8_t value) {
  return static_cast<uint8_t>(-static_cast<uint8_t>(condition)) & value;
}

}  // namespace

void record_texts::move_to(char* space) {
  for (size_t i = 0; i < begins.size(); ++i) {
    char* const end = std::copy_n(begins[i], sizes[i], space);
    begins[i] = space;
    space = end;
  }
}

char* put_shown(char* out, std::string_view url_or_filename) {
  return zk::map_chars(out, url_or_filename, [](char c) {
    const int change = only_if(c == ',', ';' - ',') | only_if(c == '\n', ';' - '\n') |
                       only_if(c == '\r', ' ' - '\r');
    return static_cast<char>(c + change);
  });
}

char* put_shown_header(char* out, std::string_view header) {
  return zk::map_chars(out, header, [](char c) {
    const auto above_blank = static_cast<uint8_t>(c - ' ');
    const uint8_t kept = only_if(above_blank <= '~' - ' ', above_blank);
    return static_cast<char>(' ' + kept + only_if(kept == ',' - ' ', ';' - ','));
  });
}

char* put_shown_redirect(char* out, std::string_view url) {
  return zk::map_chars(out, url, [](char c) { return c == ',' ? '_' : c; });
}
