// The decoders, each bound on both sides. Buffers are exactly as long as what may be read, so that
// the sanitizer build sees any byte too far.
#include <gtest/gtest.h>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "tests/support/case_file.h"
#include "tools/index_builder.h"

namespace {

using namespace url_layout;
using sample::byte_vector;
using sample::record;

struct decoded {
  bool accepted;
  url_record record;
  byte_vector bytes;
};

// Decodes into a record that was used before.
decoded decode(byte_vector bytes, uint64_t offset = 0) {
  decoded result{false, {}, std::move(bytes)};
  result.bytes.shrink_to_fit();
  byte_vector other = record::url("old").filename("old").header("old", "old").bytes();
  decode_url_record(result.record, other.data(), 0, static_cast<uint32_t>(other.size()), 1);
  result.accepted = decode_url_record(result.record, result.bytes.data(), offset,
                                      static_cast<uint32_t>(result.bytes.size()), 1);
  return result;
}

byte_vector operator+(byte_vector a, const byte_vector& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

byte_vector cut(byte_vector bytes, size_t size) {
  bytes.resize(size);
  return bytes;
}

// A record of three blocks with a URL at 104 and its string area, 280 bytes, filled with dots.
record roomy() {
  return record::url("u").put_text(106, std::string(278, '.'));
}

const byte_vector neighbour = record::redr("next").bytes();

TEST(UrlRecord, NeedsItsFixedPartAndSignature) {
  const byte_vector bytes = record::url("u").bytes(), leak = cut(record::leak().bytes(), 104);
  for (const size_t size : {0u, 4u, 103u}) EXPECT_FALSE(decode(cut(bytes, size)).accepted);
  const decoded bare = decode(cut(bytes, 104));  // no room for a URL, but the signature counts
  EXPECT_TRUE(!bare.accepted && bare.record.valid && decode(leak).accepted);
  const byte_vector moved = byte_vector(24, 'x') + leak;
  EXPECT_EQ(decode(moved, 24).record.offset, 24u);
  for (const uint64_t at : {uint64_t{25}, uint64_t{129}, ~uint64_t{0}})
    EXPECT_FALSE(decode(moved, at).accepted);
  url_record none;
  EXPECT_FALSE(decode_url_record(none, nullptr, 0, 200, 1));
  for (const char* signature : {"URL_", "url ", "REDR", "HASH"}) {
    EXPECT_FALSE(decode(record::url("u").put_text(0, signature).bytes()).record.valid);
  }
}

TEST(UrlRecord, UrlOffsetAndCut) {
  check_cases("cache/url_offset", [](const strings& c) {
    const decoded d = decode(roomy().put32(url_offset, number32(c[0])).bytes());
    return joined(d.accepted, d.record.url.size());
  });
  check_cases("cache/url_cut", [](const strings& c) {  // 24 bytes to the next record or to the end
    const record made = record::url(std::string(number(c[0]), 'u'))
                            .put32(header_offset, 104)
                            .put32(header_length, 4);
    const byte_vector bytes = cut(made.bytes(), 128);
    const decoded d = decode(c[1] == "true" ? bytes + neighbour : bytes);
    EXPECT_TRUE(d.accepted);
    return joined(d.record.url.size(), d.record.http_header.empty() ? "cut" : "whole");
  });
}

TEST(UrlRecord, TheNextRecordEndsTheRoom) {
  const record made = record::url("u")
                          .put32(block_count, 0x41424344)
                          .put32(header_offset, 4)
                          .put32(header_length, 4);
  const decoded alone = decode(made.bytes() + byte_vector(128, 0)),
                followed = decode(made.bytes() + neighbour);
  EXPECT_EQ(zk::load_le32(&alone.bytes[4]), 0x41424344u);
  EXPECT_EQ(alone.record.http_header, "DCBA");
  EXPECT_EQ(zk::load_le32(&followed.bytes[4]), 1u);
  EXPECT_EQ(followed.record.block_count(), 0x41424344u);  // the record keeps the file's own
  EXPECT_EQ(followed.record.http_header, "");             // the corrected count, 1, isn't printable
}

TEST(UrlRecord, FileNameRunsOnToItsNul) {
  check_cases("cache/file_name", [](const strings& c) {
    record made = record::url("u").put_text(120, std::string("name\0\0\0 ", 8));
    return decode(made.put32(filename_offset, number32(c[0])).bytes() + neighbour).record.filename;
  });
  const record open =
      record::leak().put32(filename_offset, 126).put_text(104, std::string(24, 'f'));
  EXPECT_EQ(decode(open.bytes()).record.filename,
            "ff");  // without a NUL it ends where the bytes do
}

TEST(UrlRecord, HeaderSpanTextUserAndCleaning) {
  const auto with_header = [](record made, const std::string& start, const std::string& length) {
    return decode(
        made.put32(header_offset, number32(start)).put32(header_length, number32(length)).bytes());
  };
  check_cases("cache/header_span", [&](const strings& c) {
    const record made = roomy().put8(105, '.').put8(103, '.').put32(url_offset, 383);
    const decoded d = with_header(made, c[0], c[1]);
    return joined(d.accepted, d.record.http_header.size());
  });
  EXPECT_FALSE(
      decode(cut(record::url("u").put32(url_offset, 96).bytes(), 104)).accepted);  // an empty area
  check_cases("cache/header_text", [&](const strings& c) {
    const decoded d = with_header(roomy().put_text(130, c[0]), "130", std::to_string(c[0].size()));
    EXPECT_TRUE(d.accepted);
    return joined(d.record.http_header, d.record.user);
  });
  const decoded d = decode(record::url("\t a,b\rc\nd \r\n").filename(" x,\ny ").bytes());
  EXPECT_EQ(d.record.url + "|" + d.record.filename, "a;b c;d|x;;y");
  const decoded leak =
      decode(record::url("u").filename("f").header("h", "u").put_text(0, "LEAK").bytes());
  EXPECT_TRUE(leak.accepted);
  EXPECT_EQ(leak.record.filename + leak.record.url + leak.record.user + leak.record.http_header,
            "f");
}

TEST(RedrRecord, LimitAndCleaning) {
  redr_record used;
  const auto redr = [&](byte_vector bytes, uint64_t offset = 0) -> std::string {
    bytes.shrink_to_fit();
    const bool accepted =
        decode_redr_record(used, bytes.data(), offset, static_cast<uint32_t>(bytes.size()));
    EXPECT_EQ(accepted, used.valid);
    EXPECT_EQ(used.offset, accepted ? offset : 0);
    return accepted ? used.url : "refused" + used.url;
  };
  const byte_vector bytes = record::redr("http://a/,b\nc \r\n").bytes();
  EXPECT_EQ(redr(byte_vector(3, 'x') + bytes, 3), "http://a/_b\nc");
  EXPECT_EQ(redr(cut(bytes, 16)), "refused");
  EXPECT_EQ(redr(byte_vector(3, 'x') + cut(bytes, 17), 3), "h");
  EXPECT_EQ(redr(record::redr("").bytes()), "");
  EXPECT_EQ(redr(record::url("u").bytes()), "refused");
}

}  // namespace
