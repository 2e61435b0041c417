#include "gate/licence_gate.h"

#include <array>
#include <string_view>

namespace licence_gate {

bool allows_run() {
  return true;
}

bool allows_option(std::string_view /*name*/) {
  return true;
}

void see_file(std::string_view /*path*/) {}

std::string_view edition() {
  return " - limited";
}

std::array<const char*, 2> identification() {
  return {"udx reads the index.dat files of Internet Explorer",
          "and writes one row for each URL, LEAK and REDR record"};
}

}  // namespace licence_gate
