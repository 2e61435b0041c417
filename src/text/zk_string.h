// Free functions on strings. Narrow strings hold UTF-8 or raw bytes, wide strings one code point
// in each character. Most change their argument, and the results of several aren't what their names
// suggest: read each declaration. They print nothing, and throw only std::bad_alloc.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zk {

// The text without the blanks, tabs, CR and LF at both ends.
inline std::string_view trimmed(std::string_view text) {
  const auto stays = [](char c) { return c != ' ' && c != '\t' && c != '\r' && c != '\n'; };
  while (!text.empty() && !stays(text.back())) text.remove_suffix(1);
  while (!text.empty() && !stays(text.front())) text.remove_prefix(1);
  return text;
}

// Removes the same from a string. False if nothing is left.
bool trim(std::string& text);

// Removes, in this order and each once: blanks at both ends, tabs at both ends, every CR at the
// end, every LF at the end. So "x\n\r" loses both, and "x\r\n" keeps its CR. False if nothing but
// blanks, or inside them nothing but tabs, was there; the text is then empty.
bool trim_wide(std::wstring& text);

// Removes every CR and LF at the end, in any order. Returns how many.
size_t strip_line_end(std::string& text);

// Removes every "/" and "\" at the end.
void strip_trailing_slashes(std::wstring& text);

// Cuts the text after its last character that isn't NUL. A text of NULs alone stays. Always true.
bool drop_trailing_nuls(std::string& text);

// Removes the last `count` characters, or all if there are fewer. False, and no change, if the
// text is empty or `count` isn't positive.
bool drop_last(std::string& text, int count);

// Change case byte by byte (characters for the wide form) and return their argument. Bytes above
// 0x7F stay, so UTF-8 isn't harmed.
std::string& to_lower(std::string& text);
std::string& to_upper(std::string& text);
std::wstring& to_lower_wide(std::wstring& text);

// Whether both are equal but for case. Where the lengths agree, both arguments are lower-cased in
// place; where they don't, both stay.
bool equal_ignore_case(std::string& a, std::string& b);

// The same as map_chars for a text of at least `block` characters.
template <size_t block, class Map>
void map_in_blocks(char* out, std::string_view text, Map map) {
  const auto map_block = [=](size_t at) {
    std::array<char, block> mapped;
    for (size_t i = 0; i < block; ++i) mapped[i] = map(text[at + i]);
    std::copy(mapped.begin(), mapped.end(), out + at);
  };
  const size_t last = text.size() - block;
  for (size_t at = 0; at < last; at += block) map_block(at);
  map_block(last);  // it may overlap the one before
}

// Writes what `map` gives for each character to `out`, and returns the place after it. Whole blocks
// become vector code: a plain loop costs 7% more instructions a row.
template <class Map>
char* map_chars(char* out, std::string_view text, Map map) {
  if (text.size() >= 16) {
    map_in_blocks<16>(out, text, map);
  } else if (text.size() >= 8) {
    map_in_blocks<8>(out, text, map);
  } else {
    std::transform(text.begin(), text.end(), out, map);
  }
  return out + text.size();
}

// Overwrites each `from` with `to`; with `ignore_case` both cases of `from`.
void replace_char(std::string& text, char from, char to, bool ignore_case = false);
void replace_char_wide(std::wstring& text, wchar_t from, wchar_t to, bool ignore_case = false);

// Replaces the first `what` by `with`. False if there is none. With `ignore_case` the search runs
// on a lower-cased copy, and `what` is lower-cased in place.
bool replace_first(std::string& text, std::string& what, const std::string& with,
                   bool ignore_case = false);

// Remove every such character. Return how many.
size_t remove_char(std::string& text, char unwanted);
size_t remove_char_wide(std::wstring& text, wchar_t unwanted);

// The pieces of `text` between any of the characters in `separators`, each trimmed by the trim of
// its kind, empty ones dropped.
std::vector<std::string> split_trimmed(std::string_view text, std::string_view separators);
std::vector<std::wstring> split_trimmed_wide(std::wstring_view text, std::wstring_view separators);

}  // namespace zk
