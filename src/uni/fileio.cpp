#include "uni/fileio.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/zk_number.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"
#include "uni/fileio_output.h"
#include "uni/stretch.h"

namespace uni {
namespace {

constexpr int64_t proc_file_size = 262144;
constexpr uint64_t unknown_end = std::numeric_limits<uint64_t>::max();
constexpr size_t largest_piece = 0x10000000;  // 256 MiB, what one system call takes for certain

fileio::access access_for(bool write, bool truncate) {
  if (!write) return fileio::access::read;
  return truncate ? fileio::access::write_truncated : fileio::access::write;
}

// Makes `out` that many zeros. False if there isn't the memory, or no vector can be so large.
bool fill_guarded(std::vector<uint8_t>& out, uint64_t size) {
  if (size > out.max_size()) return false;
  try {
    out.assign(static_cast<size_t>(size), 0);
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

// Appends to `out`. False, and no change, if there isn't the memory.
bool append_guarded(std::vector<uint8_t>& out, const uint8_t* bytes, uint32_t count) {
  try {
    out.insert(out.end(), bytes, bytes + count);
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

// Reads up to `count` bytes at `offset`, in pieces, until all has come or nothing more does.
size_t read_fully(int fd, uint8_t* buffer, size_t count, uint64_t offset) {
  size_t done = 0;
  while (done < count) {
    const size_t piece = std::min(count - done, largest_piece);
    const ssize_t got = ::pread(fd, buffer + done, piece, static_cast<off_t>(offset + done));
    if (got <= 0) break;
    done += static_cast<size_t>(got);
  }
  return done;
}

}  // namespace

fileio::fileio() = default;

fileio::fileio(std::string_view wanted, bool write, bool keep, bool truncate)
    : fileio(zk::utf8_to_wide(wanted), write, keep, truncate) {}

fileio::fileio(std::wstring wanted, bool write, bool keep, bool truncate) {
  if (!open(std::move(wanted), write, keep, truncate)) reset();
}

fileio::~fileio() {
  close();
}

bool fileio::open(std::string_view wanted, bool write, bool keep, bool truncate) {
  return open(zk::utf8_to_wide(wanted), write, keep, truncate);
}

bool fileio::open(std::wstring wanted, bool write, bool keep, bool truncate) {
  const bool done = open(std::move(wanted), access_for(write, truncate));
  if (done) keep_flag = keep;
  return done;
}

bool fileio::open(std::string_view wanted, access use) {
  return open(zk::utf8_to_wide(wanted), use);
}

bool fileio::open(std::wstring wanted, access use) {
  if (wanted.empty() || memory_mode) return false;
  zk::strip_trailing_slashes(wanted);
  reset();
  writable = use != access::read;
  path = std::move(wanted);
  const open_mode mode = open_mode_for(use);
  fd = open_raw(zk::wide_to_utf8(path), mode.flags, mode.creation_mode);
  if (fd == -1) return false;
  opened = true;
  cached_size = measure_size();
  return true;
}

void fileio::open_memory(std::vector<uint8_t> bytes) {
  close();
  memory = std::move(bytes);
  memory_mode = true;
  opened = true;
  cached_size = static_cast<int64_t>(memory.size());
}

bool fileio::is_open() const {
  return memory_mode || (fd != -1 && opened);
}

int64_t fileio::measure_size() const {
  if (!is_open()) return 0;
  if (memory_mode) return static_cast<int64_t>(memory.size());
  const off_t noted = ::lseek(fd, 0, SEEK_CUR);
  errno = 0;
  const off_t end = ::lseek(fd, 0, SEEK_END);
  if (end <= 0) {
    const bool unseekable = errno == EINVAL;
    return unseekable && path.starts_with(L"/proc") ? proc_file_size : 0;
  }
  ::lseek(fd, noted, SEEK_SET);
  return end;
}

stretch fileio::stretch_at(uint64_t offset) const {
  if (!is_open() || memory_mode) return {unknown_end, false};
  return stretch_of(fd, offset);
}

bool fileio::read_at(void* buffer, uint32_t& count, int64_t offset) const {
  if (!is_open() || offset < 0 || cached_size <= offset) return false;
  const auto left = static_cast<uint64_t>(cached_size - offset);
  const auto wanted = static_cast<uint32_t>(std::min<uint64_t>(count, left));
  if (memory_mode) {
    if (wanted != 0) std::memcpy(buffer, memory.data() + offset, wanted);
    count = wanted;
    memory_pos = static_cast<uint64_t>(offset) + wanted;
    return true;
  }
  if (wanted == 0) return true;
  const ssize_t got = ::pread(fd, buffer, wanted, offset);
  count = static_cast<uint32_t>(got);  // -1 becomes all ones
  return got != -1;
}

bool fileio::read_at_wide(void* buffer, uint64_t& count, int64_t offset) const {
  bool done = false;
  if (count <= std::numeric_limits<uint32_t>::max()) {
    auto narrow = static_cast<uint32_t>(count);
    done = read_at(buffer, narrow, offset);
    count = done ? narrow : 0;
  }
  return done;
}

bool fileio::read_block(std::vector<uint8_t>& out, int64_t count, uint64_t offset) const {
  if (!is_open() || count < 0 || offset >= static_cast<uint64_t>(cached_size)) return false;
  if (count == 0) return true;
  const uint64_t wanted =
      std::min(static_cast<uint64_t>(count), static_cast<uint64_t>(cached_size) - offset);
  if (!fill_guarded(out, wanted)) return false;
  if (memory_mode) {
    std::memcpy(out.data(), memory.data() + offset, out.size());
    memory_pos = offset + wanted;
    return true;
  }
  const size_t done = read_fully(fd, out.data(), out.size(), offset);
  if (done != 0) out.resize(done);
  return true;
}

bool fileio::append(const void* bytes, uint32_t count) {
  if (!is_open() || !bytes) return false;
  if (memory_mode) return write_at(bytes, count, memory.size());
  if (count == 0) return true;
  ::lseek(fd, 0, SEEK_END);
  if (::write(fd, bytes, count) == -1) return false;
  cached_size = ::lseek(fd, 0, SEEK_END);
  return true;
}

bool fileio::write_at(const void* bytes, uint32_t count, uint64_t offset) {
  if (!is_open() || !bytes) return false;
  if (count == 0) return true;
  if (memory_mode) {
    const auto* from = static_cast<const uint8_t*>(bytes);
    const uint64_t begin = std::min<uint64_t>(offset, memory.size());
    const auto inside = static_cast<uint32_t>(std::min<uint64_t>(count, memory.size() - begin));
    if (!append_guarded(memory, from + inside, count - inside)) return false;
    std::copy_n(from, inside, memory.begin() + static_cast<ptrdiff_t>(begin));
    cached_size = static_cast<int64_t>(memory.size());
    memory_pos = begin + count;
    return true;
  }
  ::lseek(fd, static_cast<off_t>(offset), SEEK_SET);
  if (::write(fd, bytes, count) == -1) return false;
  cached_size = ::lseek(fd, 0, SEEK_END);
  return true;
}

bool fileio::append_text(const std::ostringstream& text) {
  const std::string bytes = text.str();
  bool done = true;
  for (size_t at = 0; done && at < bytes.size(); at += largest_piece) {
    const size_t piece = std::min(bytes.size() - at, largest_piece);
    done = append(bytes.data() + at, static_cast<uint32_t>(piece));
  }
  return done;
}

bool fileio::set_permissions(const std::string& mode) {
  if (memory_mode || fd == -1) return memory_mode;
  uint32_t number = 0;
  zk::read_number(("0" + mode).c_str(), number);
  return ::fchmod(fd, number) == 0;
}

fileio_output* fileio::attach_output() {
  if (!is_open()) return nullptr;
  try {
    attached_output = std::make_unique<fileio_output>(this, output_buffer_size);
  } catch (const std::bad_alloc&) {
    attached_output.reset();
  }
  return attached_output.get();
}

void fileio::close() {
  attached_output.reset();  // its buffer's destructor writes what that holds
  reset();
}

void fileio::reset() {
  if (fd != -1) ::close(fd);
  fd = -1;
  cached_size = 0;
  writable = opened = keep_flag = false;
  path.clear();
  memory = std::vector<uint8_t>();
  memory_mode = false;
  memory_pos = 0;
  attached_output.reset();  // the file is closed by now, so nothing of it is written
}

bool load_file(std::vector<uint8_t>& out, std::string_view path, uint32_t limit) {
  out.clear();
  if (path.empty() || limit == 0) return false;
  const fileio file(path);
  const auto size = static_cast<uint32_t>(file.measure_size());
  return size != 0 && file.read_block(out, std::min(size, limit), 0);
}

int open_raw(const std::string& utf8_path, int flags, mode_t mode) {
  if (utf8_path.empty()) return -1;
  const int fd = ::open(utf8_path.c_str(), flags | O_NONBLOCK, mode);
  if (fd == -1) return -1;
  struct stat record;
  if (!descriptor_stat(fd, record) || S_ISFIFO(record.st_mode) || S_ISSOCK(record.st_mode)) {
    ::close(fd);
    return -1;
  }
  // Inputs are read in order, so that more may be read ahead; where that can't be, nothing is lost.
  if ((flags & O_ACCMODE) == O_RDONLY) ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
  return fd;
}

open_mode open_mode_for(fileio::access access) {
  // Deliberate: the group has no rights and all others have, 0404 and 0606.
  switch (access) {
    case fileio::access::write:
      return {O_RDWR, 0606};
    case fileio::access::write_truncated:
      return {O_RDWR | O_CREAT | O_TRUNC, 0606};
    case fileio::access::read:
      break;
  }
  return {O_RDONLY, 0404};
}

stretch stretch_of(int fd, uint64_t offset) {
  struct stat facts;
  if (!descriptor_stat(fd, facts) || !S_ISREG(facts.st_mode)) return {unknown_end, false};
  const auto at = static_cast<off_t>(offset);
  off_t data = ::lseek(fd, at, SEEK_DATA);
  // Nothing but a hole is left, if anything is.
  if (data == -1 && errno == ENXIO) data = ::lseek(fd, 0, SEEK_END);
  if (data > at) return {static_cast<uint64_t>(data), true};
  const off_t hole = data == at ? ::lseek(fd, at, SEEK_HOLE) : -1;
  return {hole > at ? static_cast<uint64_t>(hole) : unknown_end, false};
}

bool same_file(int fd, int other_fd) {
  struct stat one;
  struct stat other;
  if (!descriptor_stat(fd, one) || !descriptor_stat(other_fd, other)) return false;
  const bool null_device = major(one.st_rdev) == 1 && minor(one.st_rdev) == 3;
  if (S_ISCHR(one.st_mode) && null_device) return false;
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool path_stat(const std::string& utf8_path, struct stat& record) {
  record = {};
  return ::stat(utf8_path.c_str(), &record) == 0;
}

bool descriptor_stat(int fd, struct stat& record) {
  record = {};
  return ::fstat(fd, &record) == 0;
}

bool path_exists_stat(const std::string& utf8_path) {
  struct stat record;
  return path_stat(utf8_path, record);
}

}  // namespace uni
