#include "cache/shown_texts.h"
#include <string_view>

#include "text/zk_string.h"

char* put_shown(char* out, std::string_view url_or_filename) {
  return zk::map_chars(out, url_or_filename, [](char c) { return shown_char(c); });
}

char* put_shown_header(char* out, std::string_view header) {
  return zk::map_chars(out, header, [](char c) {
    const char printable = c < ' ' || c > '~' ? ' ' : c;
    return printable == ',' ? ';' : printable;
  });
}

char* put_shown_redirect(char* out, std::string_view url) {
  return zk::map_chars(out, url, [](char c) { return c == ',' ? '_' : c; });
}
