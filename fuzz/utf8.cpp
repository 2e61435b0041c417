// UTF-8 to wide text and back.
#include <algorithm>
#include <string_view>

#include "fuzz/support.h"
#include "text/zk_wide.h"

namespace {

// Whether a text is UTF-8 as its standard has it, but for surrogates where they are let in.
bool valid_utf8(std::string_view text, bool surrogates) {
  for (size_t i = 0; i < text.size();) {
    const auto at = [&](size_t n) -> uint32_t {
      return i + n < text.size() ? static_cast<uint8_t>(text[i + n]) : 0;
    };
    const auto between = [&](size_t n, uint32_t low, uint32_t high) {
      return low <= at(n) && at(n) <= high;
    };
    const uint32_t lead = at(0);
    if (lead <= 0x7F) {
      i += 1;
    } else if (lead >= 0xC2 && lead <= 0xDF && between(1, 0x80, 0xBF)) {
      i += 2;
    } else if (lead >= 0xE0 && lead <= 0xEF && between(2, 0x80, 0xBF) &&
               between(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED && !surrogates ? 0x9F : 0xBF)) {
      i += 3;
    } else if (lead >= 0xF0 && lead <= 0xF4 && between(2, 0x80, 0xBF) && between(3, 0x80, 0xBF) &&
               between(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF)) {
      i += 4;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const byte_vector copy(data, data + size);
  const std::string_view text(reinterpret_cast<const char*>(copy.data()), size);
  std::wstring wide;
  const bool decoded = zk::decode_utf8(text, wide);
  if (valid_utf8(text, false)) {
    require(decoded && zk::wide_to_utf8(wide) == text, "UTF-8 survives the way to wide and back");
  }
  require(decoded ? zk::utf8_to_wide(text) == wide : zk::utf8_to_wide(text).empty(),
          "one wrong byte empties the text");

  std::wstring any;
  for (size_t i = 0; i + 4 <= size; i += 4) {
    any.push_back(static_cast<wchar_t>(zk::load_le32(&copy[i])));
  }
  const auto beyond = std::find_if(any.begin(), any.end(),
                                   [](wchar_t c) { return static_cast<uint32_t>(c) > 0x10FFFF; });
  const std::wstring encoded(any.begin(), beyond);
  const bool surrogates = std::any_of(encoded.begin(), encoded.end(),
                                      [](wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; });
  const std::string out = zk::wide_to_utf8(any);
  require(valid_utf8(out, surrogates), "what is encoded is UTF-8");
  require(zk::utf8_to_wide(out) == encoded, "and means the same");
  return 0;
}
