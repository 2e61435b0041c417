// The decoders, each bound on both sides.
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "tests/support/check_cases.h"
#include "tools/index_text_builder.h"

namespace {

// Both decode into a record that the case before has used.
CASES(cache, url_record, 2, any_number) {
  static url_record record;
  const uint64_t offset = number(c[0]);
  index_text_builder bytes(c, 1);
  const bool accepted = decode_url_record(record, bytes.data(), offset, bytes.size(), 1);
  EXPECT_EQ(record.offset, static_cast<uint32_t>(offset));
  const char* const state[] = {"none", "refused", "accepted"};
  std::string& header = record.http_header;
  if (header.size() > 99) header = std::to_string(header.size());
  return joined(state[accepted + record.valid], record.url, record.filename, record.user, header);
}

CASES(cache, redr_record, 2, any_number) {
  static redr_record record;
  const uint64_t offset = number(c[0]);
  index_text_builder bytes(c, 1);
  const bool accepted = decode_redr_record(record, bytes.data(), offset, bytes.size());
  EXPECT_EQ(accepted, record.valid);
  EXPECT_EQ(record.offset, accepted ? offset : 0);
  return joined(accepted, record.url);
}

TEST(UrlRecord, NullIsNothing) {
  url_record record;
  EXPECT_FALSE(decode_url_record(record, nullptr, 0, 200, 1));
}

}  // namespace
