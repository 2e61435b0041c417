// Text helpers: the habits that callers rely on.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/case_file.h"
#include "text/zk_environment.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

using std::string;
using std::wstring;

TEST(Text, Cases) {
  for (const auto& [name, value] : {std::pair{"UDX_A", "1%UDX_B%"},
                                    {"UDX_B", "2"},
                                    {"UDX_EMPTY", ""},
                                    {"UDX_SELF", "%UDX_SELF%"},
                                    {"UDX_GROWS", "%UDX_GROWS%%UDX_GROWS%"}}) {
    setenv(name, value, 1);
  }
  check_cases("text/trim", [](strings c) {
    const bool result = zk::trim(c[0]);
    return joined(c[0], result);
  });
  check_cases("text/trim_wide", [](const strings& c) {
    wstring text(c[0].begin(), c[0].end());
    const bool result = zk::trim_wide(text);
    return joined(string(text.begin(), text.end()), result);
  });
  check_cases("text/number", [](const strings& c) {
    uint32_t read = 99;
    const bool result = zk::read_number(c[0].c_str(), read);
    return joined(result, read);
  });
  check_cases("text/long_number", [](strings c) {
    int64_t read = 99;
    const bool result = zk::read_number_long(c[0], read);
    return joined(result, read, c[0]);
  });
  check_cases("text/expand",
              [](strings c) { return zk::expand_environment(c[0], c[1] == "true"); });
  uint32_t read = 99;
  EXPECT_FALSE(zk::read_number(nullptr, read) || read != 0);
  string fits = string(505, 'a') + "%UDX_B%", over = "a" + fits, grows = "%UDX_GROWS%";
  const string kept = over;
  EXPECT_EQ(zk::expand_environment(fits, false), string(505, 'a') + "2");
  EXPECT_EQ(zk::expand_environment(over, false), kept);
  EXPECT_LT(zk::expand_environment(grows, false).size(), 600u);
  EXPECT_EQ(zk::shadow_copy_prefix(true, false), "\\device\\harddiskvolumeshadowcopy");
}

TEST(Text, CutsAndReplacements) {
  string line = "a\r\n\r", nuls(3, '\0'), tail("a\0b\0\0", 5), one = "a", two = "abc";
  EXPECT_EQ(zk::strip_line_end(line), 3u);
  zk::drop_trailing_nuls(nuls), zk::drop_trailing_nuls(tail);
  EXPECT_EQ(nuls + tail, string("\0\0\0a\0b", 6));
  EXPECT_TRUE(zk::drop_last(one, 2) && zk::drop_last(two, 3) && one.empty() && two.empty());
  EXPECT_FALSE(zk::drop_last(one, 2) || zk::drop_last(line, 0));
  wstring path = L"/a/\\/", wide = L"xXyZ";
  zk::strip_trailing_slashes(path);
  EXPECT_EQ(path, L"/a");
  zk::replace_char_wide(wide, L'x', L'-', true);
  EXPECT_EQ(zk::remove_char_wide(wide, L'y'), 1u);
  EXPECT_EQ(zk::to_lower_wide(wide), L"--z");
  string text = "aAbA", upper = "A\xC3\x84", other = "b\xC3\x84", what = "DATA";
  zk::replace_char(text, 'A', '_');
  zk::replace_char(text, 'a', 'A', true);  // a target inside the search set must still end
  EXPECT_EQ(text, "A_b_");
  EXPECT_EQ(zk::remove_char(text, '_'), 2u);
  EXPECT_FALSE(zk::equal_ignore_case(upper, text = "longer"));
  EXPECT_EQ(upper, "A\xC3\x84");
  EXPECT_FALSE(zk::equal_ignore_case(upper, other));  // and both are lower-cased by now
  EXPECT_EQ(upper, "a\xC3\x84");
  EXPECT_TRUE(zk::replace_first(text = "\\Data\\DATA", what, "<>", true));
  EXPECT_EQ(text + what, "\\<>\\DATAdata");
  EXPECT_FALSE(zk::replace_first(text, what, "", false));
  EXPECT_EQ(zk::split_trimmed(" a | |b,c|", "|"), (std::vector<string>{"a", "b,c"}));
}

TEST(PrintableText, KeepsReplacesAndStops) {
  const auto printable = [](const string& in, bool keep, uint8_t replacement) {
    string out = "old";
    zk::printable_text(out, reinterpret_cast<const uint8_t*>(in.data()),
                       static_cast<uint32_t>(in.size()), keep, replacement);
    return out;
  };
  EXPECT_EQ(printable("a\r\n\x1F \x7E\x7F\x80z", false, '?'), "a??? ~??z");
  EXPECT_EQ(printable("a\r\n\tz", true, 0), "a\r\nz");
  EXPECT_EQ(printable(string("ab\0cd", 5), false, '?') + printable("", false, '?'), "ab");
}

TEST(Utf8, BothWays) {
  const wstring all = L"A\x7F\x80\x7FF\x800\xD800\xFFFF\x10000\x10FFFF";
  EXPECT_EQ(zk::utf8_to_wide(zk::wide_to_utf8(all)), all);
  EXPECT_EQ(zk::wide_to_utf8(L"\xD800"), "\xED\xA0\x80");
  for (const uint32_t beyond : {0x110000u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(zk::wide_to_utf8(wstring{L'A', static_cast<wchar_t>(beyond), L'B'}), "A");
  }
  for (const char* wrong : {"\xC3", "\x80", "a\xC3(", "\xF8\x88\x80\x80\x80", "\xE2\x82"}) {
    EXPECT_EQ(zk::utf8_to_wide(wrong), L"") << wrong;
  }
  wstring partial;
  EXPECT_FALSE(zk::decode_utf8("ab\xFFz", partial));
  EXPECT_EQ(partial, L"ab");
  EXPECT_EQ(zk::utf8_to_wide("\xC0\x80\xF7\xBF\xBF\xBF"), (wstring{0, 0x1FFFFF}));  // by arithmetic
}

}  // namespace
