// Numbers as options spell them.
#pragma once

#include <cstdint>
#include <string>

namespace zk {

// Reads 0x1f or 1x1f (the first character isn't looked at) and x1f as hexadecimal, o17 as octal,
// text that begins with a digit, "+" or "-" as decimal, and 'c' as the code of c. What follows the
// digits is ignored. The form is chosen on a trimmed, lower-cased copy, but the digits are read
// from the text as given, leading blanks included: " 12" fails and " 0x1f" gives 0. The
// result is that of strtoull, cut to 32 bits: -1 gives 4294967295. False, with 0 in `number`, for
// null and for anything else.
bool read_number(const char* text, uint32_t& number);

// Trims and lower-cases `text` in place. With an "x" anywhere it reads hexadecimal after the first,
// else with an "o" octal after it, else decimal from a digit, "+" or "-". A value outside the range
// becomes its nearest end. False, with 0 in `number`, for anything else; an empty text
// also.
bool read_number_long(std::string& text, int64_t& number);

}  // namespace zk
