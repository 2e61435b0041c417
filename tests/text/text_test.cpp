// Text helpers: the habits that callers rely on.
#include <cstdlib>
#include <stdexcept>

#include "tests/support/check_cases.h"
#include "text/path_text.h"
#include "text/zk_environment.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

using std::string;

std::wstring text_of(const string& codes) {
  std::wstring text;
  for (const string& code : cells(codes, ' ')) {
    if (!code.empty()) text += static_cast<wchar_t>(number32("0x" + code));
  }
  return text;
}

// What a helper gives for a text, and behind it what it leaves of the text.
CASES(text, text) {
  const string& name = c[0];
  string text = c[1];
  string other = c["with"];
  string out = "old";
  const bool any_case = c["case"] == "any";
  if (name == "trim") return joined(zk::trim(text), text);
  if (name == "line_end") return joined(zk::strip_line_end(text), text);
  if (name == "drop_nuls") return joined(zk::drop_trailing_nuls(text), text);
  if (name == "drop_last") return joined(zk::drop_last(text, number<int>(other)), text);
  if (name == "remove") return joined(zk::remove_char(text, other.at(0)), text);
  if (name == "equal") return joined(zk::equal_ignore_case(text, other), text, other);
  if (name == "first") return joined(zk::replace_first(text, other, "<>", any_case), text, other);
  if (name == "split") return joined(split_path(text, other, out), other, out);
  uint32_t number_read = 99;
  if (name == "number") return joined(zk::read_number(text.c_str(), number_read), number_read);
  int64_t long_read = 99;
  if (name == "long") return joined(zk::read_number_long(text, long_read), long_read, text);
  if (name != "replace") throw std::invalid_argument("unknown verb: " + name);
  zk::replace_char(text, other.at(0), other.at(1), any_case);
  return text;
}

CASES(text, wide) {
  std::wstring text = zk::utf8_to_wide(c[1]);
  size_t result = 0;
  if (c[0] == "trim") {
    result = zk::trim_wide(text);
  } else if (c[0] == "remove") {
    result = zk::remove_char_wide(text, c["with"].at(0));
  } else if (c[0] == "replace") {
    zk::replace_char_wide(text, c["with"].at(0), c["with"].at(1), c["case"] == "any");
  } else {
    throw std::invalid_argument("unknown verb: " + c[0]);
  }
  return joined(result, zk::wide_to_utf8(text));
}

CASES(text, encode) {
  return zk::wide_to_utf8(text_of(c[0]));
}

CASES(text, decode) {
  std::wstring text;
  const bool result = zk::decode_utf8(c[0], text);
  EXPECT_EQ(text, text_of(c[1]));
  EXPECT_EQ(zk::utf8_to_wide(c[0]), result ? text : L"");
  EXPECT_EQ(zk::is_exact_utf8(c[0]), result && zk::wide_to_utf8(text) == c[0]);
  return joined(result);
}

CASES(text, expand) {
  setenv("UDX_A", "1%UDX_B%", 1);
  setenv("UDX_B", "2", 1);
  setenv("UDX_EMPTY", "", 1);
  setenv("UDX_SELF", "%UDX_SELF%", 1);
  setenv("UDX_GROWS", "%UDX_GROWS%%UDX_GROWS%", 1);
  // a* stands for the most that may stand ahead of a name of seven characters.
  string text = replaced(c[0], "a*", string(505, 'a'));
  zk::expand_environment(text, c["vss"] == "yes");
  return text.size() > 512 && c[0] == "%UDX_GROWS%" ? "long"
                                                    : replaced(text, string(505, 'a'), "a*");
}

TEST(Text, WhatTablesCannotSay) {
  uint32_t read = 99;
  EXPECT_FALSE(zk::read_number(nullptr, read));
  EXPECT_EQ(read, 0u);
  EXPECT_EQ(zk::split_trimmed(" a | |b,c|", "|"), (strings{"a", "b,c"}));
  EXPECT_EQ(zk::shadow_copy_prefix(true, false), "\\device\\harddiskvolumeshadowcopy");
}

// Blocks of characters are mapped at once, and the last may overlap: none is left out, and nothing
// behind them is written.
TEST(Text, MapCharsOfAnyLength) {
  for (size_t size = 0; size < 70; ++size) {
    string out(size + 1, '.');
    zk::map_chars(out.data(), string(size, 'a'), [](char c) { return ++c; });
    EXPECT_EQ(out, string(size, 'b') + '.');
  }
}

}  // namespace
