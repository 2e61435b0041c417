// Preloaded into the program, or part of the unit tests, makes system calls fail as the environment
// says:
//
//   FAULT_SHORT=N     no read brings more than N bytes
//   FAULT_EIO=AT      each read of the byte AT of a file fails
//   FAULT_FULL=N      a file takes no more than N bytes
//   FAULT_OPEN=N      the N-th open finds no free descriptor
//   FAULT_PROC=1      there is no /proc
//   FAULT_NOW=N       the time is N seconds after 1970
//   FAULT_SYSTEM=N    all files lie on a file system of the type N
//   FAULT_DEVICE=PATH what a link of a device leads to, and nothing otherwise
//   FAULT_DO=COMMAND  is run by a shell, ahead of the read FAULT_READ=N
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

namespace {

bool given(const char* name, off_t& value) {
  const char* const text = std::getenv(name);
  if (text) value = std::atoll(text);
  return text != nullptr;
}

int failed(int error) {
  errno = error;
  return -1;
}

bool hidden(const char* path) {
  return std::getenv("FAULT_PROC") && std::string_view(path).starts_with("/proc");
}

}  // namespace

// With 64-bit offsets these are the names that the program itself asks for.
extern "C" {

ssize_t pread(int fd, void* buffer, size_t count, off_t offset) {
  static off_t reads = 0;
  off_t value = 0;
  if (given("FAULT_READ", value) && ++reads == value) {
    unsetenv("LD_PRELOAD");
    if (std::system(std::getenv("FAULT_DO")) != 0) std::abort();
  }
  if (given("FAULT_EIO", value) && offset <= value && value < offset + static_cast<off_t>(count)) {
    return failed(EIO);
  }
  if (given("FAULT_SHORT", value)) count = std::min(count, static_cast<size_t>(value));
  const iovec piece = {buffer, count};  // the machines disagree on how a call takes 64-bit offsets
  return preadv(fd, &piece, 1, offset);
}

ssize_t write(int fd, const void* bytes, size_t count) {
  off_t value = 0;
  if (!given("FAULT_FULL", value)) return syscall(SYS_write, fd, bytes, count);
  const off_t room = value - lseek(fd, 0, SEEK_CUR);
  if (room <= 0) return failed(ENOSPC);
  return syscall(SYS_write, fd, bytes, std::min(count, static_cast<size_t>(room)));
}

int open(const char* path, int flags, ...) {
  static off_t opens = 0;
  off_t value = 0;
  if (given("FAULT_OPEN", value) && ++opens == value) return failed(EMFILE);
  if (hidden(path)) return failed(ENOENT);
  std::va_list arguments;
  va_start(arguments, flags);
  const auto mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

ssize_t readlink(const char* path, char* buffer, size_t size) {
  return hidden(path) ? failed(ENOENT) : syscall(SYS_readlinkat, AT_FDCWD, path, buffer, size);
}

int statfs(const char* path, struct statfs* facts) {
  off_t type = 0;
  const auto result = static_cast<int>(syscall(SYS_statfs, path, facts));
  if (given("FAULT_SYSTEM", type)) facts->f_type = type;
  return result;
}

char* realpath(const char*, char* resolved) {
  const char* const device = std::getenv("FAULT_DEVICE");
  return device ? std::strcpy(resolved, device) : nullptr;
}

int gettimeofday(timeval* now, void*) {
  timespec clock = {};
  off_t value = 0;
  clock_gettime(CLOCK_REALTIME, &clock);
  *now = {given("FAULT_NOW", value) ? value : clock.tv_sec, clock.tv_nsec / 1000};
  return 0;
}

}  // extern "C"
