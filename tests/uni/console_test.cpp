// Messages and progress, byte for byte.
#include "uni/console.h"

#include <gtest/gtest.h>

#include "tests/support/case_file.h"

namespace {

template <class Action>
std::string on_stderr(Action action) {
  testing::internal::CaptureStderr();
  action();
  return testing::internal::GetCapturedStderr();
}

int print(bool to_stderr, int limit, bool raw, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int result = uni::console_print(to_stderr, limit, format, arguments, raw);
  va_end(arguments);
  return result;
}

TEST(Message, DropsItsLastCharacterAndRefusesLongTexts) {
  struct message_case {
    std::string text, written;
    int result;
  };
  for (const auto& c :
       std::vector<message_case>{{"success\n", "success", 8},
                                 {"", "", 0},
                                 {"x", "", 1},
                                 {std::string(4096, 'x'), std::string(4095, 'x'), 4096},
                                 {std::string(4097, 'x'), "", 0}}) {
    int result = -1;
    EXPECT_EQ(on_stderr([&] { result = uni::message("%s", c.text.c_str()); }),
              wide_wipe + c.written);
    EXPECT_EQ(result, c.result);
  }
  EXPECT_EQ(on_stderr([] { EXPECT_EQ(uni::message(nullptr), 0); }), wide_wipe);
}

TEST(Progress, OneLineCutAtSixty) {
  EXPECT_EQ(on_stderr([] { uni::progress_percent("percent: %d", 7); }),
            narrow_wipe + "percent: 7\r");
  const std::string wide(59, 'p');
  EXPECT_EQ(on_stderr([&] { uni::progress_percent("%s\nqr", wide.c_str()); }),
            narrow_wipe + wide + "\r");
  EXPECT_EQ(on_stderr([] { EXPECT_EQ(print(true, 300, true, "a\n%d", 1), 3); }), "a1");
  testing::internal::CaptureStdout();
  EXPECT_EQ(print(false, 4, false, "abcdef") + print(false, 9, true, "title"), 9);
  EXPECT_FALSE(uni::set_terminal_title(nullptr));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), narrow_wipe + "abcd\r\x1B]0;title\x07");
}

}  // namespace
