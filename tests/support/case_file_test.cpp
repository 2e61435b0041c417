// The reader of cases itself: what it takes, and what it tells of a case that is mistyped.
#include <filesystem>
#include <stdexcept>

#include "tests/support/check_cases.h"

namespace {

CASES(support, file) {
  const std::string titles = "one: a =>\nsome: a | b | c... =>\nnamed: at= | [size=8] | c... =>\n";
  try {
    const std::vector<test_case> cases = parse_cases("t", titles + c[0]);
    require_known(cases, {"one", "some", "named"});
    std::string seen;
    for (const test_case& each : cases) {
      seen += std::to_string(each.line) + " " + each.kind;
      for (const auto& [name, input] : each.named) seen += " " + name + "=" + input;
      for (const std::string& input : each.inputs) seen += " [" + input + "]";
      seen += " " + each.expected + "; ";
    }
    return seen + "end";
  } catch (const std::runtime_error& wrong) {
    return wrong.what();
  }
}

CASES(support, number) {
  try {
    if (c[0] == "byte") return std::to_string(number<uint8_t>(c[1]));
    if (c[0] == "signed") return std::to_string(number<int32_t>(c[1]));
    return std::to_string(number(c[1]));
  } catch (const std::invalid_argument& wrong) {
    return wrong.what();
  }
}

CASES(support, difference) {
  return difference(c[0], c[1]);
}

TEST(Support, EveryFileOfCasesIsRead) {
  const std::filesystem::path top = UDX_SOURCE;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(top / "tests")) {
    const std::string file = entry.path().lexically_relative(top).string();
    // Those of runs are read by programs of their own.
    if (!file.ends_with(".txt") || file.starts_with("tests/cli/")) continue;
    if (file.starts_with("tests/case/")) continue;
    EXPECT_TRUE(declared_kinds().contains(file) || file.ends_with("CMakeLists.txt")) << file;
  }
}

}  // namespace
