#include "tools/sample_records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "time/zk_time.h"
#include "tools/index_builder.h"

namespace sample {
namespace {

// Spreads the bits of a record's number, so that its fields vary.
uint64_t mix(uint64_t n) {
  n = (n + 0x9E3779B97F4A7C15) * 0xBF58476D1CE4E5B9;
  n = (n ^ n >> 27) * 0x94D049BB133111EB;
  return n ^ n >> 31;
}

template <size_t n>
std::string pick(const std::array<const char*, n>& texts, uint64_t bits) {
  return texts[static_cast<size_t>(bits % n)];
}

constexpr std::array hosts = {"www.example.com",    "images.example.net", "static.example.org",
                              "news.example.com",   "cdn.shop.example",   "login.bank.example",
                              "search.example.org", "mail.example.net"};
constexpr std::array folders = {"/", "/img/", "/assets/css/", "/2009/07/", "/products/detail/"};
constexpr std::array stems = {"index", "logo", "banner-wide", "style", "favicon", "article"};

struct content_kind {
  const char* extension;
  const char* mime;
};
constexpr std::array<content_kind, 5> contents = {{{"htm", "text/html; charset=utf-8"},
                                                   {"gif", "image/gif"},
                                                   {"css", "text/css"},
                                                   {"js", "application/x-javascript"},
                                                   {"jpg", "image/jpeg"}}};

uint64_t moment(uint64_t bits) {
  constexpr uint64_t ten_years = 10ULL * 365 * 86400;
  return filetime_of(2003, 1, 1) + bits % ten_years * zk::ticks_per_second + bits % 10000000;
}

uint32_t dos_moment(uint64_t bits) {
  return dos_of(2003 + static_cast<int>(bits % 10), 1 + static_cast<int>(bits / 10 % 12),
                1 + static_cast<int>(bits / 120 % 28), static_cast<int>(bits / 3360 % 24),
                static_cast<int>(bits / 80640 % 60), static_cast<int>(bits / 4838400 % 60));
}

record typical_url(uint64_t n) {
  const uint64_t bits = mix(n);
  const content_kind& content = contents[static_cast<size_t>(bits / 7 % contents.size())];
  const std::string name = pick(stems, bits >> 8) + std::to_string(n % 1000);
  const std::string file = name + "." + content.extension;
  const auto size = static_cast<uint32_t>(bits >> 40 & 0x3FFFF);
  std::string header = "HTTP/1.1 200 OK\r\nContent-Type: " + std::string(content.mime) +
                       "\r\nContent-Length: " + std::to_string(size) + "\r\n";
  if (bits % 3 == 0) {
    header += "ETag: \"" + std::to_string(bits) + "\"\r\nX-Powered-By: ASP.NET\r\n";
  }
  return record::url("http://" + pick(hosts, bits >> 16) + pick(folders, bits >> 24) + file)
      .last_mod(moment(bits >> 3))
      .access(moment(bits >> 11))
      .expires(dos_moment(bits >> 5))
      .last_sync(dos_moment(bits >> 13))
      .file_size(size)
      .directory(static_cast<uint8_t>(bits % 4))
      .count(static_cast<uint32_t>(1 + bits % 9))
      .filename(name + "[1]." + content.extension)
      .header(header + "\r\n", bits % 5 == 0 ? "examiner" : "alice");
}

}  // namespace

const std::vector<std::string>& directory_names() {
  static const std::vector<std::string> names = {"8XK2M4QP", "C5TZ07WB", "HJ3N9VRA", "OLD1"};
  return names;
}

record typical_record(uint64_t n) {
  if (n % 16 == 5) {
    return record::redr("http://go.example.com/fwlink/?LinkId=" + std::to_string(mix(n) % 1000000));
  }
  if (n % 64 == 9) {
    return record::leak()
        .last_mod(moment(mix(n)))
        .leak_access(dos_moment(mix(n)))
        .filename("lost" + std::to_string(n % 1000) + "[1].htm");
  }
  return typical_url(n);
}

index_file small_index() {
  index_file index;
  index.directories(directory_names());
  for (uint64_t n = 0; n < 6; ++n) index.add(typical_record(n));
  index.add(record::leak()
                .last_mod(filetime_of(2008, 2, 29, 23, 59, 58))
                .leak_access(dos_of(2008, 3, 1, 12, 30, 10))
                .file_size(5120)
                .directory(1)
                .filename("draft[2].htm"));
  index.add(record::url("http://www.example.com/search?q=a,b&x=1")
                .last_mod(filetime_of(2001, 1, 1, 0, 0, 1))
                .access(filetime_of(2009, 7, 21, 18, 4, 5))
                .expires(dos_of(2000, 6, 15, 8, 0, 0))
                .last_sync(dos_of(2009, 7, 21, 18, 4, 6))
                .count(12)
                .directory(3)
                .filename("search[1].htm")
                .header("HTTP/1.1 200 OK\r\nSet-Cookie: a=1, b=2\r\n\r\n", "examiner"));
  index.add(record::url("Visited: alice@http://news.example.com/2009/07/article.htm")
                .access(filetime_of(2009, 7, 22, 6, 7, 8))
                .count(3));
  return index;
}

}  // namespace sample
