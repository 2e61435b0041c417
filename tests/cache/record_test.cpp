// The decoders, each bound on both sides.
#include <string_view>
#include "cache/redr_record.h"
#include "cache/shown_texts.h"
#include "cache/url_record.h"
#include "tests/support/check_cases.h"
#include "tools/index_text_builder.h"

namespace {

// A text as rows show it.
std::string as_shown(char* (*put)(char*, std::string_view), std::string_view text) {
  std::string shown(text.size(), '?');
  EXPECT_EQ(put(shown.data(), text), shown.data() + shown.size());
  return shown;
}

// Both decode into a record that the case before has used.
CASES(cache, url_record) {
  static url_record record;
  const uint64_t offset = number(c["at"]);
  index_text_builder bytes(c.inputs);
  const bool accepted = decode_url_record(record, bytes.data(), offset, bytes.size(), 1);
  EXPECT_EQ(record.offset, static_cast<uint32_t>(offset));
  const char* const state[] = {"none", "refused", "accepted"};
  const std::string header = as_shown(put_shown_header, record.http_header);
  return joined(state[accepted + record.valid], as_shown(put_shown, record.url),
                as_shown(put_shown, record.filename), record.user,
                header.size() > 99 ? std::to_string(header.size()) : header);
}

CASES(cache, redr_record) {
  static redr_record record;
  const uint64_t offset = number(c["at"]);
  index_text_builder bytes(c.inputs);
  const bool accepted = decode_redr_record(record, bytes.data(), offset, bytes.size());
  EXPECT_EQ(accepted, record.valid);
  EXPECT_EQ(record.offset, accepted ? offset : 0);
  return joined(accepted, as_shown(put_shown_redirect, record.url));
}

}  // namespace
