#include "text/zk_string.h"

#include <algorithm>
#include <cstddef>
#include <cwctype>
#include <locale>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zk {
namespace {

const std::ctype<char>& default_ctype() {
  static const std::locale classic_or_global;
  return std::use_facet<std::ctype<char>>(classic_or_global);
}

// Removes the characters of `set` from both ends. False if nothing else was there.
template <class String>
bool trim_set(String& text, std::basic_string_view<typename String::value_type> set) {
  const auto stays = [set](auto c) { return std::find(set.begin(), set.end(), c) == set.end(); };
  text.erase(std::find_if(text.rbegin(), text.rend(), stays).base(), text.end());
  text.erase(text.begin(), std::find_if(text.begin(), text.end(), stays));
  return !text.empty();
}

template <class String>
size_t strip_end(String& text, const typename String::value_type* set) {
  const size_t before = text.size();
  text.erase(text.find_last_not_of(set) + 1);  // npos + 1 is 0
  return before - text.size();
}

template <class Char>
std::vector<std::basic_string<Char>> split_pieces(std::basic_string_view<Char> text,
                                                  std::basic_string_view<Char> separators,
                                                  bool (*trim_piece)(std::basic_string<Char>&)) {
  std::vector<std::basic_string<Char>> pieces;
  for (size_t begin = 0; begin <= text.size();) {
    const size_t end = std::min(text.find_first_of(separators, begin), text.size());
    std::basic_string<Char> piece(text.substr(begin, end - begin));
    trim_piece(piece);
    if (!piece.empty()) pieces.push_back(std::move(piece));
    begin = end + 1;
  }
  return pieces;
}

}  // namespace

bool trim(std::string& text) {
  const std::string_view rest = trimmed(text);
  const auto begin = static_cast<size_t>(rest.data() - text.data());
  text.erase(begin + rest.size());
  if (begin != 0) text.erase(0, begin);
  return !text.empty();
}

bool trim_wide(std::wstring& text) {
  if (!trim_set(text, L" ") || !trim_set(text, L"\t")) return false;
  strip_end(text, L"\r");
  strip_end(text, L"\n");
  return true;
}

size_t strip_line_end(std::string& text) {
  return strip_end(text, "\r\n");
}

void strip_trailing_slashes(std::wstring& text) {
  strip_end(text, L"/\\");
}

bool drop_trailing_nuls(std::string& text) {
  const size_t last = text.find_last_not_of('\0');
  if (last != std::string::npos) text.erase(last + 1);
  return true;
}

bool drop_last(std::string& text, int count) {
  if (text.empty() || count <= 0) return false;
  const auto wanted = static_cast<size_t>(count);
  text.erase(text.size() - std::min(wanted, text.size()));
  return true;
}

std::string& to_lower(std::string& text) {
  if (!text.empty()) default_ctype().tolower(text.data(), text.data() + text.size());
  return text;
}

std::string& to_upper(std::string& text) {
  if (!text.empty()) default_ctype().toupper(text.data(), text.data() + text.size());
  return text;
}

std::wstring& to_lower_wide(std::wstring& text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
  return text;
}

bool equal_ignore_case(std::string& a, std::string& b) {
  if (a.size() != b.size()) return false;
  return to_lower(a) == to_lower(b);
}

void replace_char(std::string& text, char from, char to, bool ignore_case) {
  if (from == to) return;
  const char lower = ignore_case ? default_ctype().tolower(from) : from;
  const char upper = ignore_case ? default_ctype().toupper(from) : from;
  for (char& c : text) c = c == lower || c == upper ? to : c;
}

void replace_char_wide(std::wstring& text, wchar_t from, wchar_t to, bool ignore_case) {
  const auto code = static_cast<wint_t>(from);
  const wchar_t lower = ignore_case ? static_cast<wchar_t>(std::towlower(code)) : from;
  const wchar_t upper = ignore_case ? static_cast<wchar_t>(std::towupper(code)) : from;
  for (wchar_t& c : text) c = c == lower || c == upper ? to : c;
}

bool replace_first(std::string& text, std::string& what, const std::string& with,
                   bool ignore_case) {
  size_t at = std::string::npos;
  if (ignore_case) {
    std::string copy = text;
    at = to_lower(copy).find(to_lower(what));
  } else {
    at = text.find(what);
  }
  if (at == std::string::npos) return false;
  text.replace(at, what.size(), with);
  return true;
}

size_t remove_char(std::string& text, char unwanted) {
  return std::erase(text, unwanted);
}

size_t remove_char_wide(std::wstring& text, wchar_t unwanted) {
  return std::erase(text, unwanted);
}

std::vector<std::string> split_trimmed(std::string_view text, std::string_view separators) {
  return split_pieces(text, separators, trim);
}

std::vector<std::wstring> split_trimmed_wide(std::wstring_view text, std::wstring_view separators) {
  return split_pieces(text, separators, trim_wide);
}

}  // namespace zk
