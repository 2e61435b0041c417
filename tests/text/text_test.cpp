// Text helpers: the habits that callers rely on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "text/zk_environment.h"
#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

using std::string;
using std::wstring;

TEST(Trim, NarrowTakesASetAndWideTakesSteps) {
  const struct {
    string text, left;
    bool result;
  } narrow[] = {{"", "", false}, {" \t\r\n", "", false}, {"\n a b\r\t", "a b", true}};
  for (auto [text, left, result] : narrow) {
    EXPECT_EQ(zk::trim(text), result);
    EXPECT_EQ(text, left);
  }
  const struct {
    wstring text, left;
    bool result;
  } wide[] = {
      {L"", L"", false},          {L"  ", L"", false},        {L" \t ", L"", false},
      {L"\t a \t", L" a ", true}, {L" \ta\t ", L"a", true},   {L"\ra", L"\ra", true},
      {L"a\n\r", L"a", true},     {L"a\r\n", L"a\r", true},   {L"a\n\n\r\r", L"a", true},
      {L"\r\n", L"\r", true},     {L"a\r \t", L"a\r ", true},
  };
  for (auto [text, left, result] : wide) {
    EXPECT_EQ(zk::trim_wide(text), result);
    EXPECT_EQ(text, left);
  }
}

TEST(Cutting, EndsOfText) {
  string line = "a\r\n\r";
  EXPECT_EQ(zk::strip_line_end(line), 3u);
  EXPECT_EQ(line, "a");
  wstring path = L"/a/\\/";
  zk::strip_trailing_slashes(path);
  EXPECT_EQ(path, L"/a");

  string nuls(3, '\0');
  EXPECT_TRUE(zk::drop_trailing_nuls(nuls));
  EXPECT_EQ(nuls.size(), 3u);
  string tail("a\0b\0\0", 5);
  EXPECT_TRUE(zk::drop_trailing_nuls(tail));
  EXPECT_EQ(tail, string("a\0b", 3));

  const struct {
    string text;
    int count;
    string left;
    bool result;
  } drops[] = {
      {"", 2, "", false}, {"abc", 0, "abc", false}, {"a", 2, "", true}, {"abc", 2, "a", true}};
  for (auto [text, count, left, result] : drops) {
    EXPECT_EQ(zk::drop_last(text, count), result);
    EXPECT_EQ(text, left);
  }
}

TEST(Case, ComparisonLowersItsArgumentsOnlyWhereLengthsAgree) {
  string a = "ABC", b = "abC", longer = "ABCD", umlaut = "\xC3\x84";
  EXPECT_FALSE(zk::equal_ignore_case(a, longer));
  EXPECT_EQ(a, "ABC");
  EXPECT_TRUE(zk::equal_ignore_case(a, b));
  EXPECT_EQ(a + b, "abcabc");
  EXPECT_EQ(zk::to_lower(umlaut), "\xC3\x84");
  string empty_a, empty_b;
  EXPECT_TRUE(zk::equal_ignore_case(empty_a, empty_b));
}

TEST(PrintableText, KeepsReplacesAndStops) {
  const auto printable = [](string in, bool keep, uint8_t replacement) {
    string out = "old";
    zk::printable_text(out, reinterpret_cast<const uint8_t*>(in.data()),
                       static_cast<uint32_t>(in.size()), keep, replacement);
    return out;
  };
  EXPECT_EQ(printable("a\r\n\x1F\x7E\x7F\x80z", false, ' '), "a   ~  z");
  EXPECT_EQ(printable("a\r\n\tz", true, 0), "a\r\nz");
  EXPECT_EQ(printable(string("ab\0cd", 5), false, '?'), "ab");
  EXPECT_EQ(printable("", false, '?'), "");
  string out;
  EXPECT_FALSE(zk::printable_text(out, nullptr, 4, false, ' '));
}

TEST(Replace, CharactersAndFirstText) {
  string text = "aAbA";
  zk::replace_char(text, 'A', '_');
  EXPECT_EQ(text, "a_b_");
  zk::replace_char(text, 'a', 'A', true);  // a target inside the search set must still end
  EXPECT_EQ(text, "A_b_");
  wstring wide = L"xXy";
  zk::replace_char_wide(wide, L'x', L'-', true);
  EXPECT_EQ(wide, L"--y");

  string path = "C:\\Data\\DATA", what = "DATA";
  EXPECT_TRUE(zk::replace_first(path, what, "<>", true));
  EXPECT_EQ(path, "C:\\<>\\DATA");
  EXPECT_EQ(what, "data");
  EXPECT_FALSE(zk::replace_first(path, what, "", false));

  string commas = "a,b,,c";
  EXPECT_EQ(zk::remove_char(commas, ','), 3u);
  EXPECT_EQ(commas, "abc");
  EXPECT_EQ(zk::split_trimmed(" a | |b,c|", "|"), (std::vector<string>{"a", "b,c"}));
}

TEST(Number, FormsOfTheShortReader) {
  const struct {
    const char* text;
    bool result;
    uint32_t number;
  } cases[] = {
      {"0x1f", true, 31},
      {"1X1f", true, 31},
      {"x10", true, 16},
      {"o17", true, 15},
      {"12abc", true, 12},
      {"+7", true, 7},
      {"-1", true, 4294967295u},
      {"'A'", true, 65},
      {"0x", true, 0},
      {"x", true, 0},
      {"abc", false, 0},
      {"", false, 0},
      {"  ", false, 0},
      {nullptr, false, 0},
      {"99999999999999999999", true, 4294967295u},
      {" 12", false, 0},
      {" 0x1f", true, 0},
      {"12 ", true, 12},
      {" 'A'", false, 0},
      {"0o17", true, 0},
  };
  for (const auto& [text, result, expected] : cases) {
    uint32_t number = 99;
    EXPECT_EQ(zk::read_number(text, number), result) << (text ? text : "null");
    EXPECT_EQ(number, expected) << (text ? text : "null");
  }
}

TEST(Number, FormsOfTheLongReader) {
  const struct {
    string text;
    bool result;
    int64_t number;
  } cases[] = {
      {" 0X1F ", true, 31},
      {"zzx10", true, 16},
      {"o17", true, 15},
      {"1o7", true, 7},
      {"4294967296k", true, 4294967296},
      {"-5", true, -5},
      {"", false, 0},
      {"k", false, 0},
      {"99999999999999999999", true, INT64_MAX},
  };
  for (auto [text, result, expected] : cases) {
    int64_t number = 99;
    const string given = text;
    EXPECT_EQ(zk::read_number_long(text, number), result) << given;
    EXPECT_EQ(number, expected) << given;
  }
}

TEST(Environment, Expansion) {
  setenv("UDX_A", "1%UDX_B%", 1);
  setenv("UDX_B", "2", 1);
  setenv("UDX_EMPTY", "", 1);
  setenv("UDX_SELF", "%UDX_SELF%", 1);
  setenv("UDX_GROWS", "%UDX_GROWS%%UDX_GROWS%", 1);
  unsetenv("UDX_NONE");
  const struct {
    string text;
    bool vss;
    string expected;
  } cases[] = {
      {"x%UDX_A%y", false, "x12y"},
      {"%UDX_EMPTY%|%UDX_NONE%|%UDX_B%", false, "|%UDX_NONE%|2"},
      {"%UDX_NONE%UDX_B%", false, "%UDX_NONE%UDX_B%"},
      {"100%", false, "100%"},
      {"%VSS%3/%UDX_B%", true, "\\\\?\\GLOBALROOT\\Device\\HarddiskVolumeShadowCopy3/2"},
      {"%vss%", false, "%vss%"},
      {"%UDX_SELF%", false, "%UDX_SELF%"},
      {string(505, 'a') + "%UDX_B%", false, string(505, 'a') + "2"},
      {string(506, 'a') + "%UDX_B%", false, string(506, 'a') + "%UDX_B%"},
  };
  for (auto [text, vss, expected] : cases) {
    EXPECT_EQ(zk::expand_environment(text, vss), expected);
  }
  string grows = "%UDX_GROWS%";
  EXPECT_LT(zk::expand_environment(grows, false).size(), 600u);
  EXPECT_EQ(zk::shadow_copy_prefix(true, false), "\\device\\harddiskvolumeshadowcopy");
}

TEST(Utf8, BothWays) {
  const wstring all = L"A\x7F\x80\x7FF\x800\xFFFF\x10000\x10FFFF";
  EXPECT_EQ(zk::utf8_to_wide(zk::wide_to_utf8(all)), all);
  EXPECT_EQ(zk::wide_to_utf8(wstring(1, static_cast<wchar_t>(0xD800))), "\xED\xA0\x80");
  EXPECT_EQ(zk::wide_to_utf8(wstring{L'A', static_cast<wchar_t>(0x110000), L'B'}), "A");
  for (const char* wrong : {"\xC3", "\x80", "a\xC3(", "\xF8\x88\x80\x80\x80", "\xE2\x82"}) {
    EXPECT_EQ(zk::utf8_to_wide(wrong), L"") << wrong;
  }
  wstring partial;
  EXPECT_FALSE(zk::decode_utf8("ab\xFFz", partial));
  EXPECT_EQ(partial, L"ab");
  EXPECT_EQ(zk::utf8_to_wide("\xC0\x80"), wstring(1, L'\0'));  // overlong forms decode
}

}  // namespace
