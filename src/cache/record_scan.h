// The one search by which records are found, whatever input path brought the bytes.
#pragma once

#include <cstdint>

#include "cache/record_table.h"
#include "opts/cmd_opts.h"

// Tries the candidate at `bytes`, of which `limit` bytes may be read, as a URL or LEAK record and
// then as a REDR record. One that is accepted and declares fewer than 10 blocks goes into the table
// under `position`, its absolute offset, unless a row is there. False if it was refused.
bool add_record(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t limit,
                uint64_t position);

// Tries every signature on the block grid of `bytes`, which lie at the absolute offset `base`. The
// first 128 bytes of a buffer are never tried. `bytes` are written to where decode_url_record says
// so. `overlap`, how many of the last bytes come again in the next buffer, decides nothing: no
// signature is found beyond the end. The result says whether any was found, accepted or not.
bool scan_buffer(record_table& table, const cmd_opts& opts, uint8_t* bytes, uint32_t size,
                 uint64_t base, uint32_t overlap);
