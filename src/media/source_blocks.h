// Streams one file through a function, block after block, so that a file too large for memory can
// be searched. Blocks overlap, so that what lies across a border is whole in one of them.
#pragma once

#include <cstdint>
#include <functional>

#include "uni/fileio.h"

// One block. Its bytes may be changed and are gone after the call.
struct file_block {
  uint8_t* bytes;
  uint32_t size;      // in bytes
  uint32_t overlap;   // how many of its last bytes the next block begins with
  uint64_t position;  // of its first byte in the file
  bool zeros;         // a hole: all its bytes are zeros, and `bytes` doesn't hold them
};

using block_callback = std::function<void(const file_block&)>;

// Hands the bytes of `file` from `start` on to `callback`, in blocks of `block_size` bytes of which
// each begins `overlap` bytes before its predecessor's end. A file of less than one block comes
// whole, without overlap. Of any other, the last block holds at least the overlap, and maybe
// nothing else. A failed read ends the scan silently. A short one lowers the size of all later
// blocks, of which the last may then be smaller than the overlap. Blocks in a hole of the file
// aren't read. False only if the file isn't open. Throws std::bad_alloc if there isn't the memory.
bool scan_file_blocks(const uni::fileio& file, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t start);
