// Text helpers: the habits that callers rely on.
#include <gtest/gtest.h>

#include <cstdlib>

#include "text/zk_environment.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

using std::string;
using std::wstring;

// Tables are laid out by hand, a case as short as it can be.
// clang-format off

TEST(Trim, NarrowTakesASetAndWideTakesSteps) {
  struct narrow_case { string text, left; bool result; };
  for (auto [text, left, result] : std::vector<narrow_case>{
           {"", "", false}, {" \t\r\n", "", false}, {"\n a b\r\t", "a b", true}}) {
    EXPECT_EQ(zk::trim(text), result);
    EXPECT_EQ(text, left);
  }
  struct wide_case { wstring text, left; bool result; };
  for (auto [text, left, result] : std::vector<wide_case>{
           {L"", L"", false}, {L"  ", L"", false}, {L" \t ", L"", false}, {L"\t a \t", L" a ", true},
           {L" \ta\t ", L"a", true}, {L"\ra", L"\ra", true}, {L"a\n\r", L"a", true},
           {L"a\r\n", L"a\r", true}, {L"a\n\n\r\r", L"a", true}, {L"\r\n", L"\r", true}}) {
    EXPECT_EQ(zk::trim_wide(text), result);
    EXPECT_EQ(text, left);
  }
}

TEST(Text, CutsAndReplacements) {
  string line = "a\r\n\r", nuls(3, '\0'), tail("a\0b\0\0", 5), one = "a", two = "abc";
  EXPECT_EQ(zk::strip_line_end(line), 3u);
  zk::drop_trailing_nuls(nuls);
  EXPECT_EQ(nuls.size(), 3u);
  zk::drop_trailing_nuls(tail);
  EXPECT_EQ(tail, string("a\0b", 3));
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
  const auto printable = [](string in, bool keep, uint8_t replacement) {
    string out = "old";
    zk::printable_text(out, reinterpret_cast<const uint8_t*>(in.data()),
                       static_cast<uint32_t>(in.size()), keep, replacement);
    return out;
  };
  EXPECT_EQ(printable("a\r\n\x1F \x7E\x7F\x80z", false, '?'), "a??? ~??z");
  EXPECT_EQ(printable("a\r\n\tz", true, 0), "a\r\nz");
  EXPECT_EQ(printable(string("ab\0cd", 5), false, '?') + printable("", false, '?'), "ab");
}

TEST(Number, BothReaders) {
  struct short_case { const char* text; bool result; uint32_t number; };
  for (const auto& [text, result, expected] : std::vector<short_case>{
           {"0x1f", true, 31}, {"1X1f", true, 31}, {"x10", true, 16}, {"o17", true, 15},
           {"12abc", true, 12}, {"+7", true, 7}, {"-1", true, 4294967295}, {"'A'", true, 65},
           {"'\xE4'", true, 0xE4}, {"0x", true, 0}, {"x", true, 0}, {"abc", false, 0}, {"", false, 0},
           {"  ", false, 0}, {nullptr, false, 0}, {"4294967297", true, 1}, {"12 ", true, 12},
           {"99999999999999999999", true, 4294967295}, {" 12", false, 0}, {" 0x1f", true, 0}}) {
    uint32_t number = 99;
    EXPECT_EQ(zk::read_number(text, number), result) << (text ? text : "null");
    EXPECT_EQ(number, expected) << (text ? text : "null");
  }
  struct long_case { string text; bool result; int64_t number; string left; };
  for (auto [text, result, expected, left] : std::vector<long_case>{
           {" 0X1F ", true, 31, "1f"}, {"zzx10", true, 16, "10"}, {"1O7", true, 7, "7"},
           {"4294967296K", true, 4294967296, "4294967296k"}, {"-5", true, -5, "-5"},
           {"99999999999999999999", true, INT64_MAX, "99999999999999999999"},
           {"", false, 0, ""}, {" k ", false, 0, "k"}}) {
    int64_t number = 99;
    EXPECT_EQ(zk::read_number_long(text, number), result) << left;
    EXPECT_EQ(number, expected) << left;
    EXPECT_EQ(text, left);
  }
}

TEST(Environment, Expansion) {
  for (const auto& [name, value] : {std::pair{"UDX_A", "1%UDX_B%"}, {"UDX_B", "2"}, {"UDX_EMPTY", ""},
                                    {"UDX_SELF", "%UDX_SELF%"}, {"UDX_GROWS", "%UDX_GROWS%%UDX_GROWS%"}}) {
    setenv(name, value, 1);
  }
  struct expansion { string text; bool vss; string expected; };
  const string prefix = "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy";
  for (auto [text, vss, expected] : std::vector<expansion>{
           {"x%UDX_A%y", false, "x12y"}, {"%UDX_EMPTY%|%NONE%|%UDX_B%", false, "|%NONE%|2"},
           {"%NONE%UDX_B%", false, "%NONE%UDX_B%"}, {"100%", false, "100%"},
           {"%VSS%3/%UDX_B%", true, prefix + "3/2"}, {"%vss%", false, "%vss%"},
           {"%UDX_SELF%", false, "%UDX_SELF%"},
           {string(505, 'a') + "%UDX_B%", false, string(505, 'a') + "2"},
           {string(506, 'a') + "%UDX_B%", false, string(506, 'a') + "%UDX_B%"}}) {
    EXPECT_EQ(zk::expand_environment(text, vss), expected);
  }
  string grows = "%UDX_GROWS%";
  EXPECT_LT(zk::expand_environment(grows, false).size(), 600u);
  EXPECT_EQ(zk::shadow_copy_prefix(true, false), "\\device\\harddiskvolumeshadowcopy");
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
