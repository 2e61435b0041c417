// Text helpers: the habits that callers rely on.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/case_file.h"
#include "text/path_text.h"
#include "text/zk_environment.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

using std::string;

std::wstring text_of(const string& codes) {
  std::wstring text;
  std::istringstream in(codes);
  for (uint32_t code = 0; in >> std::hex >> code;) text += static_cast<wchar_t>(code);
  return text;
}

// What a helper gives for a text, and behind it what it leaves of the text.
string called(strings c) {
  c.resize(4);
  const string name = c[0];
  string &text = c[1], &other = c[2], out = "old";
  const bool any_case = c[3] == "any case";
  const auto size = static_cast<uint32_t>(text.size());
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const auto fill = static_cast<uint8_t>(c[3][0]);
  uint32_t number = 99;
  int64_t wide_number = 99;
  if (name == "trim") return joined(zk::trim(text), text);
  if (name == "line_end") return joined(zk::strip_line_end(text), text);
  if (name == "drop_nuls") return joined(zk::drop_trailing_nuls(text), text);
  if (name == "drop_last") return joined(zk::drop_last(text, std::stoi(other)), text);
  if (name == "remove") return joined(zk::remove_char(text, other[0]), text);
  if (name == "equal") return joined(zk::equal_ignore_case(text, other), text, other);
  if (name == "first") return joined(zk::replace_first(text, other, "<>", any_case), text, other);
  if (name == "number") return joined(zk::read_number(text.c_str(), number), number);
  if (name == "long") return joined(zk::read_number_long(text, wide_number), wide_number, text);
  if (name == "expand") return zk::expand_environment(text, other == "vss");
  if (name == "shown")
    return joined(zk::printable_text(out, bytes, size, other == "lines", fill), out);
  if (name == "split") return joined(split_path(text, other, out), other, out);
  if (name == "replace") zk::replace_char(text, other[0], other[1], any_case);
  return text;
}

string called_wide(const strings& c) {
  std::wstring text = zk::utf8_to_wide(c[1]);
  size_t result = 0;
  if (c[0] == "trim") result = zk::trim_wide(text);
  if (c[0] == "remove") result = zk::remove_char_wide(text, c[2][0]);
  if (c[0] == "replace") zk::replace_char_wide(text, c[2][0], c[2][1], c.size() > 3);
  return joined(result, zk::wide_to_utf8(text));
}

TEST(Text, Cases) {
  check_cases("text/set", [](const strings& c) { return joined(setenv(&c[0][0], &c[1][0], 1)); });
  check_cases("text/text", called);
  check_cases("text/wide", called_wide);
  check_cases("text/encode", [](const strings& c) { return zk::wide_to_utf8(text_of(c[0])); });
  check_cases("text/decode", [](const strings& c) {
    std::wstring text;
    const bool result = zk::decode_utf8(c[0], text);
    EXPECT_EQ(text, text_of(c[1]));
    EXPECT_EQ(zk::utf8_to_wide(c[0]), result ? text : L"");
    EXPECT_EQ(zk::is_exact_utf8(c[0]), result && zk::wide_to_utf8(text) == c[0]);
    return joined(result);
  });
  uint32_t read = 99;
  EXPECT_FALSE(zk::read_number(nullptr, read) || read != 0);
  EXPECT_EQ(zk::split_trimmed(" a | |b,c|", "|"), (strings{"a", "b,c"}));
  const string most(505, 'a');
  string fits = most + "%UDX_B%", over = "a" + fits, grows = "%UDX_GROWS%";
  EXPECT_EQ(zk::expand_environment(fits, false), most + "2");
  EXPECT_EQ(zk::expand_environment(over, false), "a" + most + "%UDX_B%");
  EXPECT_LT(zk::expand_environment(grows, false).size(), 600u);
  EXPECT_EQ(zk::shadow_copy_prefix(true, false), "\\device\\harddiskvolumeshadowcopy");
}

}  // namespace
