// A filter's text and a path, and a -filter_sig value. No file is opened.
#include "front/filter_text.h"

#include "front/path_match.h"
#include "fuzz/support.h"
#include "text/path_text.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"

namespace {

bool takes(const std::string& text, const std::string& path) {
  filter_list filters;
  require(parse_filter_text(filters, text), "every text compiles to something");
  bool unreadable = false;
  const bool taken = filter_match(cmd_params(), unreadable, path, filters, nullptr);
  require(!unreadable, "a filter without bytes opens no file");
  return taken;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> texts = texts_of(data, size, 3);
  filter_list signatures;
  add_signature_filter(signatures, texts[2]);
  require(signatures.empty() || !signatures[0].sig_bytes.empty(), "a signature has bytes");

  const std::wstring path = zk::utf8_to_wide(texts[1]);
  std::string upper_text = texts[0];
  std::string upper_path = texts[1];
  zk::to_upper(upper_text);
  zk::to_upper(upper_path);
  require(takes(texts[0], texts[1]) == takes(upper_text, upper_path), "filters don't regard case");
  require(takes("*", texts[1]) == !path.empty(), "a star takes every path");

  std::wstring folder;
  std::wstring name;
  if (!split_path(path, folder, name) || name.empty()) return 0;
  const std::string text = zk::wide_to_utf8(name);
  const bool plain = text.find_first_of("*,|:") == std::string::npos && text[0] != '/';
  if (plain && zk::utf8_to_wide(text) == name)
    require(takes(text, texts[1]), "a name takes its path");
  return 0;
}
