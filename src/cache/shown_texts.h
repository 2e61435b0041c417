// The texts of a record, and how rows show them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// A record's texts as the file has them, less the blanks at both ends. The memory is someone
// else's.
class record_texts {
 public:
  record_texts() = default;
  record_texts(std::string_view url, std::string_view user, std::string_view filename,
               std::string_view http_header)
      : begins{url.data(), user.data(), filename.data(), http_header.data()},
        sizes{static_cast<uint32_t>(url.size()), static_cast<uint32_t>(user.size()),
              static_cast<uint32_t>(filename.size()), static_cast<uint32_t>(http_header.size())} {}

  std::string_view url() const { return text(0); }
  std::string_view user() const { return text(1); }
  std::string_view filename() const { return text(2); }
  std::string_view http_header() const { return text(3); }

  size_t size() const { return size_t{sizes[0]} + sizes[1] + sizes[2] + sizes[3]; }

  // Copies all of them to `space`, which has `size` bytes, and views them there.
  void move_to(char* space);

 private:
  std::string_view text(size_t i) const { return {begins[i], sizes[i]}; }

  // A quarter smaller than four string views: a run can keep the texts of millions of rows.
  std::array<const char*, 4> begins = {};
  std::array<uint32_t, 4> sizes = {};
};

// A character of a URL or a file name as rows show it: commas and LF become semicolons, CR a blank.
constexpr char shown_char(char c) {
  if (c == ',' || c == '\n') return ';';
  return c == '\r' ? ' ' : c;
}

// Write a text to `out` as rows show it, and return the place behind it. Its size stays.
char* put_shown(char* out, std::string_view url_or_filename);
// Commas become semicolons, and all but printable ASCII blanks.
char* put_shown_header(char* out, std::string_view header);
// Deliberate: a comma becomes an underscore, not a semicolon as in URL records, and line ends
// inside the URL stay.
char* put_shown_redirect(char* out, std::string_view url);
