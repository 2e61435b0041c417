// UTF-8 to wide text and back. A wide string holds one code point in each 32-bit character.
#pragma once

#include <string>
#include <string_view>

namespace zk {

// Decodes UTF-8 into `out`. False at the first byte that fits no sequence, or at an end inside
// one; `out` then holds what came before. Overlong forms, surrogates and values above 0x10FFFF
// aren't checked.
bool decode_utf8(std::string_view text, std::wstring& out);

// Whether every byte is below 0x80.
bool is_ascii(std::string_view text);

// Whether the text comes back from its wide form as it was: every byte fits a sequence, and none is
// an overlong form or a value above 0x10FFFF. Surrogates pass.
bool is_exact_utf8(std::string_view text);

// The decoded text, or an empty one if any byte is wrong.
std::wstring utf8_to_wide(std::string_view text);

// Encodes each code point, surrogates like any other. A value above 0x10FFFF ends the result.
std::string wide_to_utf8(std::wstring_view text);

}  // namespace zk
