// The decoders, each bound on both sides. Buffers are exactly as long as what may be read, so that
// the sanitizer build sees any byte too far.
#include <gtest/gtest.h>

#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "tools/index_builder.h"

namespace {

using sample::byte_vector;
using sample::record;

struct decoded {
  bool accepted;
  url_record record;
  byte_vector bytes;
};

decoded decode(byte_vector bytes, uint64_t offset = 0) {
  decoded result{false, {}, std::move(bytes)};
  result.bytes.shrink_to_fit();
  const auto limit = static_cast<uint32_t>(result.bytes.size());
  result.accepted = decode_url_record(result.record, result.bytes.data(), offset, limit, 1);
  return result;
}

byte_vector operator+(byte_vector a, const byte_vector& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// A record of three blocks with a URL at 104, room for anything behind it, and zeros as its rest.
record roomy() {
  return record::url("http://a/").put_text(120, std::string(264, '\0'));
}

const byte_vector neighbour = record::redr("next").bytes();

TEST(UrlRecord, NeedsItsFixedPartAndSignature) {
  byte_vector bytes = record::url("u").bytes();
  for (const size_t size : {0u, 4u, 103u}) {
    EXPECT_FALSE(decode({bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)}).accepted);
  }
  // 104 bytes hold no URL, but the signature counts.
  const decoded bare = decode({bytes.begin(), bytes.begin() + 104});
  EXPECT_FALSE(bare.accepted);
  EXPECT_TRUE(bare.record.valid);
  const byte_vector leak = record::leak().bytes();
  EXPECT_TRUE(decode({leak.begin(), leak.begin() + 104}).accepted);

  const byte_vector moved = byte_vector(24, 'x') + byte_vector(leak.begin(), leak.begin() + 104);
  EXPECT_TRUE(decode(moved, 24).accepted);
  EXPECT_EQ(decode(moved, 24).record.offset, 24u);
  EXPECT_FALSE(decode(moved, 25).accepted);
  EXPECT_FALSE(decode(moved, 129).accepted);
  EXPECT_FALSE(decode(moved, ~uint64_t{0}).accepted);
  url_record none;
  EXPECT_FALSE(decode_url_record(none, nullptr, 0, 200, 1));
  for (const char* signature : {"URL_", "url ", "REDR", "HASH"}) {
    EXPECT_FALSE(decode(record::url("u").put_text(0, signature).bytes()).record.valid);
  }
}

TEST(UrlRecord, UrlOffsetAndCut) {
  const struct {
    uint32_t offset;
    bool accepted;
    const char* url;
  } offsets[] = {{0, false, ""},
                 {104, true, "http://a/"},
                 {383, true, ""},
                 {384, false, ""},
                 {0xFFFFFFFF, false, ""}};
  for (const auto& c : offsets) {
    const decoded d = decode(roomy().put32(url_layout::url_offset, c.offset).bytes());
    EXPECT_EQ(d.accepted, c.accepted) << c.offset;
    EXPECT_EQ(d.record.url, c.url) << c.offset;
  }
  // 24 bytes are left to the next record: a URL of 24 fits, though its NUL doesn't.
  for (const size_t length : {23u, 24u, 25u, 60u}) {
    byte_vector bytes = record::url(std::string(length, 'u')).header("h").bytes();
    bytes.resize(128);
    bytes = bytes + (length == 24 ? byte_vector{0, 0, 0, 0} : byte_vector{'R', 'E', 'D', 'R'});
    bytes.resize(256);
    const decoded d = decode(bytes);
    const bool next_found = length != 24;
    EXPECT_TRUE(d.accepted);
    EXPECT_EQ(d.record.url.size(), next_found ? std::min<size_t>(length, 24) : 24u) << length;
  }
  const decoded cut = decode(record::url(std::string(40, 'u')).header("h").blocks(1).bytes());
  EXPECT_EQ(cut.record.url.size(), 40u);
}

TEST(UrlRecord, TheNextRecordEndsTheRoom) {
  byte_vector bytes = record::url("http://a/")
                          .put32(url_layout::header_offset, 114)
                          .put32(url_layout::header_length, 14)
                          .put32(url_layout::block_count, 7)
                          .put_text(114, "header text")
                          .bytes();
  ASSERT_EQ(bytes.size(), 128u);
  const decoded alone = decode(bytes + byte_vector(128, 0));
  EXPECT_EQ(zk::load_le32(&alone.bytes[4]), 7u);
  const decoded followed = decode(bytes + neighbour);
  EXPECT_EQ(followed.record.block_count(), 7u);
  EXPECT_EQ(zk::load_le32(&followed.bytes[4]), 1u);
  EXPECT_EQ(followed.record.http_header, "header text");

  // The URL is cut at the neighbour, and then there is no header.
  const decoded cut = decode(record::url(std::string(10, 'u'))
                                 .put_text(114, std::string(14, 'v'))
                                 .put32(url_layout::header_offset, 104)
                                 .put32(url_layout::header_length, 8)
                                 .bytes() +
                             neighbour);
  EXPECT_TRUE(cut.accepted);
  EXPECT_EQ(cut.record.url, "uuuuuuuuuuvvvvvvvvvvvvvv");
  EXPECT_EQ(cut.record.header_raw, "");

  // Header text that begins at offset 4 shows the corrected count.
  const decoded shown = decode(record::url("u")
                                   .put32(url_layout::block_count, 0x41414141)
                                   .put32(url_layout::header_offset, 4)
                                   .put32(url_layout::header_length, 4)
                                   .bytes() +
                               neighbour);
  EXPECT_EQ(shown.record.header_raw, std::string("\1\0\0\0", 4));
}

TEST(UrlRecord, FileNameRunsOnToItsNul) {
  const struct {
    uint32_t offset;
    const char* name;
  } cases[] = {{0, ""}, {120, "name"}, {127, "REDR\2"}, {128, ""}, {0xFFFFFFFF, ""}};
  for (const auto& c : cases) {
    record made = record::url("u").put_text(120, std::string("name\0\0\0\0", 8));
    made.put8(127, ' ').put32(url_layout::filename_offset, c.offset);
    const decoded d = decode(made.bytes() + record::redr("x").put32(4, 2).blocks(2).bytes());
    EXPECT_EQ(d.record.filename, c.name) << c.offset;
  }
  // Without a NUL it ends where the bytes do.
  const decoded open = decode(record::leak()
                                  .put32(url_layout::filename_offset, 126)
                                  .put_text(104, std::string(24, 'f'))
                                  .bytes());
  EXPECT_EQ(open.record.filename, "ff");
}

TEST(UrlRecord, HeaderSpan) {
  // The room is 384 bytes, the string area 280.
  const struct {
    uint32_t start, length;
    bool accepted;
    size_t taken;
  } cases[] = {
      {200, 10, true, 10},   {374, 10, true, 10},         {375, 10, true, 0},
      {383, 1, true, 1},     {384, 1, true, 0},           {384, 0, false, 0},
      {385, 0, true, 280},   {385, 281, true, 0},         {200, 0, false, 0},
      {0, 0, true, 280},     {0, 280, true, 280},         {0, 281, true, 0},
      {104, 280, true, 280}, {103, 280, true, 280},       {105, 280, true, 0},
      {10, 281, true, 0},    {0xFFFFFFFF, 10, true, 280}, {200, 0xFFFFFFFF, true, 0},
  };
  for (const auto& c : cases) {
    const decoded d = decode(roomy()
                                 .put32(url_layout::header_offset, c.start)
                                 .put32(url_layout::header_length, c.length)
                                 .bytes());
    EXPECT_EQ(d.accepted, c.accepted) << c.start << ' ' << c.length;
    EXPECT_EQ(d.record.header_raw.size(), c.taken) << c.start << ' ' << c.length;
    EXPECT_EQ(d.record.url, "http://a/");
  }
  // A room that is no more than the fixed part leaves nothing to take.
  const decoded small = decode([] {
    byte_vector bytes = record::url("u").put32(url_layout::url_offset, 96).bytes();
    bytes.resize(104);
    return bytes;
  }());
  EXPECT_FALSE(small.accepted);
}

TEST(UrlRecord, HeaderTextAndUser) {
  const std::string nul(1, '\0');
  const struct {
    std::string span, header, user;
  } cases[] = {
      {"a\r\nb,c \x7F\x80~", "a  b;c   ~", ""},
      {"text~U: al,ice \r\n" + nul + "more", "text", "al,ice"},
      {"text~U:no end", "text", "no end"},
      {"~U:alice" + nul, "-", "-"},
      {"one" + nul + "two~U:bob" + nul, "one", "bob"},
      {" ,x, ~U:" + nul, ";x;", ""},
      {nul + "~U:bob", "", "bob"},
      {"~U", "~U", ""},
      {"\r\n", "", ""},
  };
  for (const auto& c : cases) {
    const decoded d =
        decode(roomy()
                   .put32(url_layout::header_offset, 130)
                   .put32(url_layout::header_length, static_cast<uint32_t>(c.span.size()))
                   .put_text(130, c.span)
                   .bytes());
    EXPECT_TRUE(d.accepted);
    EXPECT_EQ(d.record.http_header, c.header) << c.span;
    EXPECT_EQ(d.record.user, c.user) << c.span;
  }
}

TEST(UrlRecord, StringsAreCleaned) {
  const decoded d = decode(record::url("\t a,b\rc\nd \r\n").filename(" x,\ny ").bytes());
  EXPECT_EQ(d.record.url, "a;b c;d");
  EXPECT_EQ(d.record.filename, "x;;y");
}

TEST(UrlRecord, ALeakHasAFileNameAlone) {
  const decoded d =
      decode(record::url("http://a/").filename("f").header("h", "u").put_text(0, "LEAK").bytes());
  EXPECT_TRUE(d.accepted);
  EXPECT_EQ(d.record.filename, "f");
  EXPECT_EQ(d.record.url + d.record.user + d.record.http_header + d.record.header_raw, "");
}

TEST(RedrRecord, LimitAndCleaning) {
  const auto redr = [](byte_vector bytes, uint64_t offset = 0) {
    bytes.shrink_to_fit();
    redr_record decoded_record;
    const bool accepted = decode_redr_record(decoded_record, bytes.data(), offset,
                                             static_cast<uint32_t>(bytes.size()));
    EXPECT_EQ(accepted, decoded_record.valid);
    return accepted ? decoded_record.url : "refused";
  };
  byte_vector bytes = record::redr("http://a/,b\nc \r\n").bytes();
  EXPECT_EQ(redr(bytes), "http://a/_b\nc");
  EXPECT_EQ(redr(byte_vector(3, 'x') + bytes, 3), "http://a/_b\nc");
  EXPECT_EQ(redr({bytes.begin(), bytes.begin() + 16}), "refused");
  EXPECT_EQ(redr({bytes.begin(), bytes.begin() + 17}), "h");
  EXPECT_EQ(redr(record::redr("").bytes()), "");
  EXPECT_EQ(redr(record::url("u").bytes()), "refused");
}

}  // namespace
