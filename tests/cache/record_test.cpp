// The decoders, each bound on both sides.
#include <gtest/gtest.h>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "tests/cache/index_text.h"

namespace {

// Both decode into a record that the case before has used.
TEST(UrlRecord, Decoded) {
  url_record record;
  const auto decoded = [&](const strings& parts, uint64_t offset) {
    auto bytes = index_text(parts).bytes;
    const auto size = static_cast<uint32_t>(bytes.size());
    const bool accepted = decode_url_record(record, bytes.data(), offset, size, 1);
    EXPECT_EQ(record.offset, static_cast<uint32_t>(offset));
    const char* const state[] = {"none", "refused", "accepted"};
    std::string& header = record.http_header;
    if (header.size() > 99) header = std::to_string(header.size());
    return joined(state[accepted + record.valid], record.url, record.filename, record.user, header);
  };
  check_cases("cache/url_record", [&](const strings& c) { return decoded(c, 0); });
  check_cases("cache/url_record_at", [&](const strings& c) {
    return decoded({c.begin() + 1, c.end()}, number(c[0]));
  });
  EXPECT_FALSE(decode_url_record(record, nullptr, 0, 200, 1));
}

TEST(RedrRecord, Decoded) {
  redr_record record;
  check_cases("cache/redr_record_at", [&](const strings& c) {
    const uint64_t offset = number(c[0]);
    const auto bytes = index_text({c.begin() + 1, c.end()}).bytes;
    const auto size = static_cast<uint32_t>(bytes.size());
    const bool accepted = decode_redr_record(record, bytes.data(), offset, size);
    EXPECT_EQ(accepted, record.valid);
    EXPECT_EQ(record.offset, accepted ? offset : 0);
    return joined(accepted, record.url);
  });
}

}  // namespace
