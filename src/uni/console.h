// Messages and progress on standard error. Both share one terminal line: a progress line is
// written over itself, and a message wipes the line first, whether or not anything is there.
// All is flushed at once; failed writes are ignored.
#pragma once

#include <cstdarg>

namespace uni {

// Opens /dev/null in place of each standard stream that is closed. Else a file opened later would
// take its number, and get the messages or the rows that were meant for the stream.
void fill_standard_streams();

// Wipes the line, on a terminal by the erase sequence, elsewhere roughly, by blanks. Both are
// always written.
void clear_line();

// The same where progress has ended.
inline void clear_progress_line() {
  clear_line();
}

// Wipes the line and writes the formatted text, as printf does.
// Deliberate: the last character isn't written, so that a text that ends in a line feed leaves the
// cursor on its line for the next wipe; and a text of more than 4096 characters isn't written at
// all. Returns the length of the text, its last character counted; 0 for one that is too long.
[[gnu::format(printf, 1, 2)]] int message(const char* format, ...);

// Writes one progress line, cut at 60 characters.
[[gnu::format(printf, 1, 2)]] void progress_percent(const char* format, ...);

// Formats a text and cuts it at `limit` characters. Unless `raw`, it is written between a wipe
// and a CR. Line feeds are removed. It goes to standard error, or else to standard output; raw text
// there becomes the terminal's title. Returns the cut length.
[[gnu::format(printf, 3, 0)]] int console_print(bool to_stderr, int limit, const char* format,
                                                std::va_list arguments, bool raw);

// Names the terminal's window through standard output. False for null.
bool set_terminal_title(const char* text);

}  // namespace uni
