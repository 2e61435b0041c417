// The texts of a record as its row shows them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

struct text_sizes {
  uint32_t url = 0;
  uint32_t filename = 0;
  uint32_t user = 0;
  uint32_t http_header = 0;
};

// They stand one behind the other, so that all are copied at once. The memory is someone else's.
struct record_texts {
  const char* begin = nullptr;
  text_sizes sizes;

  std::string_view url() const { return {begin, sizes.url}; }
  std::string_view filename() const { return {begin + sizes.url, sizes.filename}; }
  std::string_view user() const { return {begin + sizes.url + sizes.filename, sizes.user}; }
  std::string_view http_header() const {
    return {begin + size() - sizes.http_header, sizes.http_header};
  }
  size_t size() const {
    return size_t{sizes.url} + sizes.filename + sizes.user + sizes.http_header;
  }
};
