// Preloaded into the program, or part of the unit tests, makes system calls fail as the environment
// says:
//
//   FAULT_SHORT=N     no read brings more than N bytes
//   FAULT_EIO=AT      each read of the byte AT of a file fails
//   FAULT_NOW=N       the time is N seconds after 1970
//   FAULT_SYSTEM=N    all files lie on a file system of the type N
//   FAULT_DEVICE=PATH what a link of a device leads to, and nothing otherwise
//   FAULT_DO=COMMAND  is run by a shell, ahead of the read FAULT_READ=N
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

bool given(const char* name, off_t& value) {
  const char* const text = std::getenv(name);
  if (text) value = std::atoll(text);
  return text != nullptr;
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
    errno = EIO;
    return -1;
  }
  if (given("FAULT_SHORT", value)) count = std::min(count, static_cast<size_t>(value));
  const iovec piece = {buffer, count};  // the machines disagree on how a call takes 64-bit offsets
  return preadv(fd, &piece, 1, offset);
}

int statfs(const char* path, struct statfs* facts) {
  off_t type = 0;
  const auto result = static_cast<int>(syscall(SYS_statfs, path, facts));
  if (given("FAULT_SYSTEM", type)) facts->f_type = static_cast<decltype(facts->f_type)>(type);
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
