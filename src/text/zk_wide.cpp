#include "text/zk_wide.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zk {

namespace {

// Takes the code point at `i` and moves `i` after it. False where the bytes fit no sequence.
bool take_code(std::string_view text, size_t& i, uint32_t& code) {
  const auto lead = static_cast<uint8_t>(text[i++]);
  code = lead;
  if (lead < 0x80) return true;
  int following = 0;
  if ((lead & 0xE0) == 0xC0) {
    following = 1;
    code = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    following = 2;
    code = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    following = 3;
    code = lead & 0x07;
  } else {
    return false;
  }
  for (; following > 0; --following) {
    if (i == text.size()) return false;
    const auto next = static_cast<uint8_t>(text[i++]);
    if ((next & 0xC0) != 0x80) return false;
    code = code << 6 | (next & 0x3F);
  }
  return true;
}

// The bytes that a code point takes; 0 above the last one.
size_t encoded_size(uint32_t code) {
  if (code <= 0x7F) return 1;
  if (code <= 0x7FF) return 2;
  if (code <= 0xFFFF) return 3;
  return code <= 0x10FFFF ? 4 : 0;
}

}  // namespace

bool decode_utf8(std::string_view text, std::wstring& out) {
  out.clear();
  out.reserve(text.size());
  uint32_t code = 0;
  for (size_t i = 0; i < text.size();) {
    if (!take_code(text, i, code)) return false;
    out.push_back(static_cast<wchar_t>(code));
  }
  return true;
}

bool is_ascii(std::string_view text) {
  uint8_t bits = 0;
  for (const char c : text) bits |= static_cast<uint8_t>(c);
  return bits < 0x80;
}

bool is_exact_utf8(std::string_view text) {
  if (is_ascii(text)) return true;
  uint32_t code = 0;
  for (size_t i = 0; i < text.size();) {
    const size_t begin = i;
    if (!take_code(text, i, code) || encoded_size(code) != i - begin) return false;
  }
  return true;
}

std::wstring utf8_to_wide(std::string_view text) {
  std::wstring wide;
  if (!decode_utf8(text, wide)) wide.clear();
  return wide;
}

std::string wide_to_utf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  const auto put = [&](uint32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto put_following = [&](uint32_t code, int shift) {
    for (; shift >= 0; shift -= 6) put(0x80 | (code >> shift & 0x3F));
  };
  for (const wchar_t character : text) {
    const auto code = static_cast<uint32_t>(character);
    if (code <= 0x7F) {
      put(code);
    } else if (code <= 0x7FF) {
      put(0xC0 | code >> 6);
      put_following(code, 0);
    } else if (code <= 0xFFFF) {
      put(0xE0 | code >> 12);
      put_following(code, 6);
    } else if (code <= 0x10FFFF) {
      put(0xF0 | code >> 18);
      put_following(code, 12);
    } else {
      break;
    }
  }
  return out;
}

}  // namespace zk
