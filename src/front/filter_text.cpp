#include "front/filter_text.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "front/arguments.h"
#include "opts/path_filter.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

// Splits at commas, or else at bars. A text that gives no piece is one itself, untrimmed.
std::vector<std::wstring> filter_pieces(const std::wstring& text) {
  std::vector<std::wstring> pieces;
  for (const wchar_t* separator : {L"|", L","}) {
    if (text.find(*separator) == std::wstring::npos) continue;
    pieces = zk::split_trimmed_wide(text, separator);
  }
  if (pieces.empty()) pieces.push_back(text);
  return pieces;
}

void take_stars(std::wstring& text, bool& front, bool& back) {
  front = text.starts_with(L'*');
  back = text.ends_with(L'*');
  zk::remove_char_wide(text, L'*');
}

path_filter compile_piece(const std::wstring& piece) {
  path_filter filter;
  filter.raw_text = filter.match_text = piece;
  if (const size_t colon = piece.find(L':'); colon != std::wstring::npos) {
    filter.has_stream = true;
    filter.match_text = piece.substr(0, colon);
    filter.stream_text = piece.substr(colon + 1);
    if (filter.stream_text == L"*") {
      filter.stream_all = true;
    } else {
      take_stars(filter.stream_text, filter.stream_star_front, filter.stream_star_back);
    }
    if (filter.match_text == L"*") {
      filter.match_all = true;
      return filter;
    }
  }
  take_stars(filter.match_text, filter.star_front, filter.star_back);
  filter.is_path = filter.match_text.starts_with(L'/');
  return filter;
}

}  // namespace

bool parse_filter_text(filter_list& out, std::string text) {
  out.clear();
  for (const std::wstring& piece : filter_pieces(zk::utf8_to_wide(zk::to_lower(text)))) {
    if (piece == L"*") {
      path_filter all;
      all.raw_text = all.match_text = piece;
      all.match_all = true;
      out.assign(1, all);
      break;
    }
    out.push_back(compile_piece(piece));
  }
  return !out.empty();
}

void parse_byte_list(std::vector<uint8_t>& out, const std::string& text, char separator, bool hex) {
  out.clear();
  for (const std::string& number : zk::split_trimmed(text, std::string_view(&separator, 1))) {
    out.push_back(static_cast<uint8_t>(std::strtoull(number.c_str(), nullptr, hex ? 16 : 10)));
  }
}

bool add_filter(filter_list& filters, argument_list& args, const std::string& value) {
  filter_list added;
  parse_filter_text(added, value);
  filters.insert(filters.end(), added.begin(), added.end());
  std::string path_text;
  if (!filters.empty() && take_option("-filter_path", path_text, args)) {
    const auto length = static_cast<uint32_t>(path_text.size());
    const std::wstring wide = zk::utf8_to_wide(zk::to_lower(path_text));
    for (path_filter& filter : filters) {
      filter.path_text = wide;
      filter.path_text_len = length;
    }
  }
  return true;
}

bool add_signature_filter(filter_list& filters, const std::string& value) {
  std::vector<std::string> pieces;
  for (const char* separator : {"|", ","}) {
    if (value.find(*separator) == std::string::npos) continue;
    pieces = zk::split_trimmed(value, separator);
  }
  if (pieces.empty()) pieces.push_back(value);
  path_filter filter;
  parse_byte_list(filter.sig_bytes, pieces[0], ' ', true);
  if (pieces.size() == 2) {
    int64_t offset = 0;
    zk::read_number_long(pieces[1], offset);
    filter.sig_offset = static_cast<uint64_t>(offset);
  }
  if (!filter.sig_bytes.empty()) filters.push_back(std::move(filter));
  return true;
}
