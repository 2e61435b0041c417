#include "tests/support/shown.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "tools/case_file.h"

const std::string header_line =
    "last mod date,last mod time,access date,access time,expires date,expires time,last sync date,"
    "last sync time,type,url,user,filename,file size,directory,count,HTTP header,"
    "index.dat filename\n";

std::string in_words(std::string text) {
  const std::string wipe = "\x1B[2K\r" + std::string(27, ' ') + "\r";
  const std::string progress = "\x1B[2K\r" + std::string(4, ' ') + "\r";
  text = replaced(replaced(text, wipe, "<wipe>"), header_line, "<titles>");
  for (size_t at = 0; (at = text.find(progress, at)) != std::string::npos;) {
    const size_t begin = at + progress.size();
    const size_t end = std::min(text.find('\r', begin), text.size());
    text.replace(at, end + 1 - at, "<progress " + text.substr(begin, end - begin) + ">");
  }
  return text;
}
