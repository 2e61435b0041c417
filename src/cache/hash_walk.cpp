#include "cache/hash_walk.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "cache/index_dat.h"
#include "cache/record_signature.h"
#include "cache/redr_record.h"
#include "cache/url_record.h"
#include "text/le_bytes.h"

namespace {

constexpr uint32_t no_block = 0xFFFFFFFF;

template <class Record>
hash_range range_of(const Record& record, uint32_t block_index) {
  hash_range range;
  range.offset = record.offset;
  range.length = record.block_count() * block_size;
  range.blocks = {block_index};
  return range;
}

void note(std::map<uint64_t, hash_range>& ranges, const hash_range& range, uint32_t block_index) {
  ranges.try_emplace(range.offset, range).first->second.blocks.push_back(block_index);
}

void follow_chain(cache_container& container, uint8_t* bytes, uint32_t size) {
  uint32_t offset = zk::load_le32(bytes + index_layout::first_hash);
  if (offset == 0 || uint64_t{offset} + hash_layout::header_size >= size) return;
  std::set<uint32_t> seen;
  for (uint32_t index = 0; offset != 0 && offset < size && seen.insert(offset).second; ++index) {
    if (range_fits(bytes, bytes + offset, url_layout::fixed_size, size) == 0) return;
    hash_block block;
    if (!read_hash_block(block, bytes, offset, size)) return;
    index_hash_block(block, container.occupied, index);
    offset = zk::load_le32(&block.fixed[hash_layout::next]);
    container.hash_blocks.push_back(std::move(block));
  }
}

struct gap {
  uint64_t begin, end;
};

// The spans between known records. What lies before the first isn't one.
std::vector<gap> gaps_between(const std::map<uint64_t, hash_range>& ranges, uint32_t size) {
  std::vector<gap> gaps;
  uint64_t end = 0;
  for (const auto& [offset, range] : ranges) {
    if (end != 0 && end < offset) gaps.push_back({end, offset});
    end = offset + range.length;
    if (size <= end) break;
  }
  return gaps;
}

// Deliberate: the decoders get an offset from the file's start but a limit that counts from the
// place itself. A record passes only where its offset is no more than what is left of the gap.
void search_gap(cache_container& container, uint8_t* bytes, const gap& between) {
  for (uint64_t at = between.begin; at + block_size <= between.end; at += block_size) {
    const uint32_t four = zk::load_le32(bytes + at);
    const auto limit = static_cast<uint32_t>(between.end - at);
    if (four == redr_signature) {
      redr_record record;
      decode_redr_record(record, bytes, at, limit);
      record.in_gap = true;
      if (record.valid) container.gap_redrs.push_back(record);
    } else if (is_url_or_leak(four)) {
      url_record record;
      decode_url_record(record, bytes, at, limit, 1);
      record.in_gap = true;
      if (record.valid) container.gap_urls.push_back(record);
    }
  }
}

template <class Record>
void note_gap_records(cache_container& container, const std::vector<Record>& records,
                      int32_t hash_range::*index) {
  for (size_t i = 0; i < records.size(); ++i) {
    hash_range range = range_of(records[i], no_block);
    range.*index = static_cast<int32_t>(i);
    range.from_gap = true;
    container.occupied.try_emplace(range.offset, std::move(range));
  }
}

}  // namespace

bool walk_hash_chain(cache_container& container, uint8_t* bytes, uint32_t size, bool search_gaps) {
  container = {};
  if (!read_header(container, bytes, size)) return false;
  if (!read_directories(container, bytes, size)) return false;
  follow_chain(container, bytes, size);
  if (container.occupied.empty() || !search_gaps) return container.parsed;
  for (const gap& between : gaps_between(container.occupied, size)) {
    search_gap(container, bytes, between);
  }
  note_gap_records(container, container.gap_urls, &hash_range::url_index);
  note_gap_records(container, container.gap_redrs, &hash_range::redr_index);
  return container.parsed;
}

void index_hash_block(const hash_block& block, std::map<uint64_t, hash_range>& ranges,
                      uint32_t block_index) {
  for (size_t i = 0; i < block.url_records.size(); ++i) {
    hash_range range = range_of(block.url_records[i], block_index);
    range.url_index = static_cast<int32_t>(i);
    note(ranges, range, block_index);
  }
  for (size_t i = 0; i < block.redr_records.size(); ++i) {
    hash_range range = range_of(block.redr_records[i], block_index);
    range.redr_index = static_cast<int32_t>(i);
    note(ranges, range, block_index);
  }
}
