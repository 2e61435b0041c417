// The walk along the HASH blocks.
#include "cache/hash_walk.h"
#include "cache/index_dat.h"
#include "cache/record_signature.h"
#include "fuzz/support.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  byte_vector bytes(data, data + size);
  cache_container container;
  walk_hash_chain(container, bytes.data(), static_cast<uint32_t>(size), true);
  for (const hash_block& block : container.hash_blocks) {
    require(block.parsed, "only whole HASH blocks are kept");
    for (const hash_entry& entry : block.entries) {
      require(entry.key != hash_layout::end_key && entry.record_offset < size,
              "an entry points into the file");
    }
  }
  for (const auto& [offset, range] : container.occupied) {
    require(offset == range.offset && offset < size, "a span begins in the file");
    require((range.url_index == -1) != (range.redr_index == -1), "a span is of one record");
  }
  for (size_t i = 0; i < size; ++i) {
    if (bytes[i] == data[i]) continue;
    bool in_count = false;
    for (size_t back = 4; back < 8 && back <= i; ++back) {
      in_count = in_count || is_url_or_leak(zk::load_le32(data + i - back));
    }
    require(in_count, "only block counts change");
  }
  return 0;
}
