// How rows show the texts of a record.
#pragma once

#include <string_view>

// A character of a URL or a file name: commas and LF become semicolons, CR a blank.
constexpr char shown_char(char c) {
  if (c == ',' || c == '\n') return ';';
  return c == '\r' ? ' ' : c;
}

// Write a text to `out` as rows show it, and return the place after it. Its size stays.
char* put_shown(char* out, std::string_view url_or_filename);
// Commas become semicolons, and what isn't printable ASCII becomes a blank.
char* put_shown_header(char* out, std::string_view header);
// Deliberate: a comma becomes an underscore, not a semicolon as in URL records, and line ends
// inside the URL stay.
char* put_shown_redirect(char* out, std::string_view url);
