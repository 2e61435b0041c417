// One compiled entry of -filter, -filter_skip or -filter_sig.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct path_filter {
  uint32_t path_text_len = 0;
  std::wstring path_text;    // value of -filter_path; stored only
  std::wstring raw_text;     // the whole piece, lower-cased
  std::wstring match_text;   // the piece without its stars and its stream part
  std::wstring stream_text;  // what follows the first colon
  std::vector<uint8_t> sig_bytes;
  uint64_t sig_offset = 0;  // in bytes from the file's start
  bool is_path = false;     // match_text begins with "/"
  bool match_all = false;   // every path is taken
  bool star_front = false;
  bool star_back = false;
  bool has_stream = false;
  bool stream_all = false;
  bool stream_star_front = false;
  bool stream_star_back = false;
};
