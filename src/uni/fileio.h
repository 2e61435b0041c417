// One file by its path: a descriptor, the size found at open, and reads and writes that name
// their offset. The same object can hold its bytes in memory instead.
//
// Nothing here prints; each failure is a false, 0 or null result. Paths and texts may throw
// std::bad_alloc; read_block, writes to memory and attach_output don't.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "uni/stretch.h"

namespace uni {

// The size of the buffer between a results stream and its file, in bytes.
inline constexpr int output_buffer_size = 262144;

class fileio_output;

class fileio {
 public:
  // What an opened file is for: to be read; to be read and written; or that and created if it is
  // missing, emptied if it isn't.
  enum class access { read, write, write_truncated };

  fileio();
  // Opens at once, as `open` does; a failure leaves the object empty.
  explicit fileio(std::string_view path, bool write = false, bool keep = false,
                  bool truncate = false);
  explicit fileio(std::wstring path, bool write = false, bool keep = false, bool truncate = false);
  fileio(const fileio&) = delete;
  fileio& operator=(const fileio&) = delete;
  ~fileio();

  // Opens the file at `path`, a narrow one being UTF-8, less its trailing slashes. A file that is
  // already open is closed first, without flushing its attached output: close it yourself. Never
  // blocks. False for an empty path, in memory mode, for a FIFO or a socket, and when the system
  // refuses.
  [[nodiscard]] bool open(std::string_view path, access use);
  [[nodiscard]] bool open(std::wstring path, access use);
  // The same by flags: for reading; or where `write` is set for both, and then with `truncate`
  // emptied. `keep` is stored and changes nothing.
  bool open(std::string_view path, bool write = false, bool keep = false, bool truncate = false);
  bool open(std::wstring path, bool write = false, bool keep = false, bool truncate = false);

  // Closes what is open and serves `bytes` from memory from now on.
  void open_memory(std::vector<uint8_t> bytes);

  bool is_open() const;

  // The size in bytes found at open and kept up to date by writes; 0 when not open. It bounds
  // every read: what a file grows by later isn't seen.
  int64_t size() const { return is_open() ? cached_size : 0; }

  // Asks the system for the size, which for a block device is the device's. Files under "/proc"
  // whose end can't be sought measure 262144. 0 when not open.
  int64_t measure_size() const;

  // Whether the bytes from `offset` on are a hole of the file, where its file system tells.
  stretch stretch_at(uint64_t offset) const;

  // The descriptor, which stays this object's; -1 in memory mode and where nothing is open.
  int descriptor() const { return fd; }

  // Reads at most `count` bytes from `offset` with one system read, and sets `count` to what came,
  // which may be less. False where nothing is open or `offset` is at or beyond the size, with
  // `count` as it was, and where the read fails, with `count` all ones.
  [[nodiscard]] bool read_at(void* buffer, uint32_t& count, int64_t offset) const;
  // The same for a 64-bit count, which must fit 32 bits. Where it does, false sets it to 0.
  [[nodiscard]] bool read_at_wide(void* buffer, uint64_t& count, int64_t offset) const;

  // Reads `count` bytes from `offset`, or as many as the file has, into `out`. On a short read
  // `out` shrinks; if nothing came, it stays that many zeros. A count of 0 leaves `out` alone.
  // False only where nothing is open, `offset` is at or beyond the size, or there isn't the memory.
  [[nodiscard]] bool read_block(std::vector<uint8_t>& out, int64_t count, uint64_t offset) const;

  // Write `count` bytes at the end or at `offset` with one system write. False where nothing is
  // open, `bytes` is null or the write fails; a short write counts as done. In memory mode what
  // lies beyond the block's end is appended to it.
  [[nodiscard]] bool append(const void* bytes, uint32_t count);
  [[nodiscard]] bool write_at(const void* bytes, uint32_t count, uint64_t offset);
  // Appends the stream's text; true if there is none.
  [[nodiscard]] bool append_text(const std::ostringstream& text);

  // Changes the file's mode to the number that `mode` gives with a "0" put before it.
  // Deliberate: digits make a decimal number, so "420" is what sets rw-r--r--. Without a
  // descriptor the result says whether the object is in memory mode.
  [[nodiscard]] bool set_permissions(const std::string& mode);

  // Makes a buffered output stream that appends to this file. The stream belongs to the file; its
  // rows reach the file in blocks and when it is closed. Null if nothing is open or there isn't
  // the memory.
  [[nodiscard]] fileio_output* attach_output();

  // Brings the attached output's bytes to the file, then closes it. The object is empty again.
  void close();

 private:
  void reset();

  int fd = -1;
  int64_t cached_size = 0;
  bool writable = false;  // stored
  bool opened = false;
  bool keep_flag = false;  // stored
  std::wstring path;
  std::vector<uint8_t> memory;
  bool memory_mode = false;
  mutable uint64_t memory_pos = 0;  // the end of the last access to `memory`; stored
  std::unique_ptr<fileio_output> attached_output;
};

// Replaces `out` by the first `limit` bytes of the file at `path`, or by all if it has fewer.
// False for an empty path, a limit of 0, a file that can't be opened or measures 0 in the low 32
// bits of its size.
[[nodiscard]] bool load_file(std::vector<uint8_t>& out, std::string_view path, uint32_t limit);

// Opens a path with open(2) `flags`, never blocking, and returns a descriptor that the caller
// closes. The system is told that a file opened for reading will be read in order. -1 for an empty
// path, for a FIFO or a socket, and when the system refuses.
[[nodiscard]] int open_raw(const std::string& utf8_path, int flags, mode_t mode);

// The open(2) flags and the creation mode for an access.
struct open_mode {
  int flags;
  mode_t creation_mode;
};
open_mode open_mode_for(fileio::access access);

// What the file system knows of a descriptor's bytes from `offset` on. Moves its position. Only
// regular files have holes: a folder can measure 2^63-1 bytes, and would be taken for a hole.
stretch stretch_of(int fd, uint64_t offset);

// Whether two descriptors are of the same file, so that what is written to one is mixed with what
// is written to the other. Never true of the null device, nor of a descriptor that isn't open.
[[nodiscard]] bool same_file(int fd, int other_fd);

// Fill `record`, which is zeroed first, with the facts of a path or a descriptor.
[[nodiscard]] bool path_stat(const std::string& utf8_path, struct stat& record);
[[nodiscard]] bool descriptor_stat(int fd, struct stat& record);
[[nodiscard]] bool path_exists_stat(const std::string& utf8_path);

}  // namespace uni
