// The decoders, each bound on both sides.
#include <gtest/gtest.h>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "tests/cache/index_text.h"

namespace {

// Both decode into a record that the case before has used.
TEST(UrlRecord, Decoded) {
  url_record record;
  check_cases("cache/url_record", [&](const strings& c) {
    const uint64_t offset = number(c[0]);
    index_text bytes(c, 1);
    const bool accepted = decode_url_record(record, bytes.data(), offset, bytes.size(), 1);
    EXPECT_EQ(record.offset, static_cast<uint32_t>(offset));
    const char* const state[] = {"none", "refused", "accepted"};
    std::string& header = record.http_header;
    if (header.size() > 99) header = std::to_string(header.size());
    return joined(state[accepted + record.valid], record.url, record.filename, record.user, header);
  });
  EXPECT_FALSE(decode_url_record(record, nullptr, 0, 200, 1));
}

TEST(RedrRecord, Decoded) {
  redr_record record;
  check_cases("cache/redr_record", [&](const strings& c) {
    const uint64_t offset = number(c[0]);
    index_text bytes(c, 1);
    const bool accepted = decode_redr_record(record, bytes.data(), offset, bytes.size());
    EXPECT_EQ(accepted, record.valid);
    EXPECT_EQ(record.offset, accepted ? offset : 0);
    return joined(accepted, record.url);
  });
}

}  // namespace
