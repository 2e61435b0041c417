// The decoders, each bound on both sides.
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "tests/support/check_cases.h"
#include "tools/index_text_builder.h"

namespace {

// The texts of a record as its row shows them, good until the next one's.
record_texts shown_texts(const auto& record, size_t size) {
  static std::string space;
  space.assign(size, '?');
  record_texts texts;
  put_clean_texts(texts, space.data(), record);
  return texts;
}

// Both decode into a record that the case before has used.
CASES(cache, url_record, 2, any_number) {
  static url_record record;
  const uint64_t offset = number(c[0]);
  index_text_builder bytes(c, 1);
  const bool accepted = decode_url_record(record, bytes.data(), offset, bytes.size(), 1);
  EXPECT_EQ(record.offset, static_cast<uint32_t>(offset));
  const char* const state[] = {"none", "refused", "accepted"};
  const auto texts = shown_texts(record, record.texts_size());
  const std::string header(texts.http_header());
  return joined(state[accepted + record.valid], texts.url(), texts.filename(), texts.user(),
                header.size() > 99 ? std::to_string(header.size()) : header);
}

CASES(cache, redr_record, 2, any_number) {
  static redr_record record;
  const uint64_t offset = number(c[0]);
  index_text_builder bytes(c, 1);
  const bool accepted = decode_redr_record(record, bytes.data(), offset, bytes.size());
  EXPECT_EQ(accepted, record.valid);
  EXPECT_EQ(record.offset, accepted ? offset : 0);
  return joined(accepted, shown_texts(record, record.url.size()).url());
}

}  // namespace
