// Streams a file or a disk through a function, block after block, so that one too large for memory
// can be searched. Blocks overlap, so that what lies across a border is whole in one of them.
#pragma once

#include <cstdint>
#include <functional>

#include "media/raw_disk_io.h"
#include "uni/fileio.h"

// One block. Its bytes may be changed and are gone after the call.
struct source_block {
  uint8_t* bytes;
  uint32_t size;           // in bytes
  uint32_t overlap;        // how many of its last bytes the next block begins with
  uint64_t position;       // of its first byte in the source
  uint64_t next_position;  // of the next block's first byte, if there is one
  bool has_bytes;  // false for a hole, which isn't read, and a failed read: don't read `bytes`
};

using block_callback = std::function<void(const source_block&)>;

// Hands the bytes of `file` from `start` on to `callback`, in blocks of `block_size` bytes of which
// each begins `overlap` bytes before its predecessor's end. A file of less than one block comes
// whole, without overlap. Of any other, the last block holds at least the overlap, and maybe
// nothing else. A failed read ends the scan silently. A short one lowers the size of all later
// blocks, of which the last may then be smaller than the overlap; if it brings no more than the
// overlap, later blocks have none; 0 bytes end the scan. False only if the file isn't
// open. Throws std::bad_alloc if there isn't the memory.
bool scan_file_blocks(const uni::fileio& file, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t start);

// Hands the bytes of `disk` before `end` on in the same way. Each read asks for a whole block,
// also the one at the end. A block whose read fails comes without bytes, and the next one
// doesn't overlap it. A short read leaves the rest of the block as it was.
void scan_disk_blocks(const RAW_DISK_IO& disk, const block_callback& callback, uint32_t block_size,
                      uint32_t overlap, uint64_t end);
