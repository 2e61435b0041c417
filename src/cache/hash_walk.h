// Reads an index by its structure: follows the chain of HASH blocks, and searches the gaps between
// the records that the blocks list. No run calls this: all rows come from the search in
// record_scan.h.
#pragma once

#include <cstdint>
#include <map>

#include "cache/index_dat.h"

// Fills the container from a whole file. With `search_gaps` the spans between known records are
// searched too. `bytes` are written to where decode_url_record says so. False if the header is
// wrong or the directory table doesn't fit. A chain that comes back to a block ends there.
bool walk_hash_chain(cache_container& container, uint8_t* bytes, uint32_t size, bool search_gaps);

// Stores the spans of a block's records, each with the block's index.
// Deliberate: a new span stores its block index twice.
void index_hash_block(const hash_block& block, std::map<uint64_t, hash_range>& ranges,
                      uint32_t block_index);
