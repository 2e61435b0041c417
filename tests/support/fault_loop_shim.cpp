// Preloaded into the program, makes its allocations or its calls of one function fail:
//
//   FAULT_CALL=NAME   "allocation", or one of the functions below
//   FAULT_AT=N        the N-th of them, 0 for none
//   FAULT_ON=1        and all behind it; 0 if not
//   FAULT_COUNT=FILE  gets how many there were
//
// They are counted from where the program's own code begins, its static objects included. What the
// libraries take as they start is left out: without its first block the C++ library can't throw.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const char* wanted = nullptr;
unsigned long calls = 0;
unsigned long first_failing = 0;
bool stays = false;
bool sparing = false;

// The constructor comes behind the libraries' and ahead of the program's, the destructor last.
const struct switched_on {
  switched_on() {
    first_failing = std::strtoul(std::getenv("FAULT_AT"), nullptr, 10);
    stays = *std::getenv("FAULT_ON") == '1';
    wanted = std::getenv("FAULT_CALL");
  }
  ~switched_on() {
    wanted = nullptr;
    std::FILE* const count = std::fopen(std::getenv("FAULT_COUNT"), "w");
    std::fprintf(count, "%lu", calls);
    std::fclose(count);
  }
} switched_on;

bool fails(const char* name, int error) {
  if (!wanted || std::strcmp(name, wanted) != 0) return false;
  ++calls;
  if (stays ? calls < first_failing : calls != first_failing) return false;
  errno = error;
  return true;
}

// While there is one, allocations don't fail.
struct spared {
  spared() { sparing = true; }
  ~spared() { sparing = false; }
};

bool allocation_fails() {
  return !sparing && fails("allocation", ENOMEM);
}

// The C library's own function of a name. Where files of any size need other functions, the name in
// the library isn't the one in the source.
template <class Function>
Function* next_after(Function* own) {
  Dl_info found;
  if (dladdr(reinterpret_cast<void*>(own), &found) == 0) std::abort();
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, found.dli_sname));
}

}  // namespace

// A function that gives `failure`, or what the C library's own one gives. What a failing close
// has to close is left open.
#define FAULTY(result, name, parameters, arguments, failure, error) \
  result name parameters {                                          \
    static const auto real = next_after<result parameters>(name);   \
    return fails(#name, error) ? failure : real arguments;          \
  }

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);

void* malloc(size_t size) {
  return allocation_fails() ? nullptr : __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
  return allocation_fails() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* old, size_t size) {
  return allocation_fails() ? nullptr : __libc_realloc(old, size);
}

// The program's calls of these two that matter have at most one argument more.
int open(const char* path, int flags, ...) {
  std::va_list more;
  va_start(more, flags);
  const auto mode = va_arg(more, mode_t);
  va_end(more);
  return fails("open", EMFILE) ? -1 : ::openat(AT_FDCWD, path, flags, mode);
}
int fcntl(int fd, int command, ...) {
  return fails("fcntl", EBADF) ? -1 : static_cast<int>(syscall(SYS_fcntl, fd, command));
}

FAULTY(int, close, (int fd), (fd), -1, EIO)
FAULTY(ssize_t, pread, (int fd, void* to, size_t size, off_t at), (fd, to, size, at), -1, EIO)
FAULTY(ssize_t, write, (int fd, const void* from, size_t size), (fd, from, size), -1, ENOSPC)
FAULTY(off_t, lseek, (int fd, off_t at, int from), (fd, at, from), -1, EINVAL)
FAULTY(int, stat, (const char* path, struct stat* to), (path, to), -1, EACCES)
FAULTY(int, lstat, (const char* path, struct stat* to), (path, to), -1, EACCES)
FAULTY(int, fstat, (int fd, struct stat* to), (fd, to), -1, EIO)
FAULTY(int, fstatat, (int fd, const char* path, struct stat* to, int flags), (fd, path, to, flags),
       -1, EACCES)
FAULTY(DIR*, opendir, (const char* path), (path), nullptr, EACCES)
FAULTY(dirent*, readdir, (DIR * folder), (folder), nullptr, EIO)
FAULTY(int, closedir, (DIR * folder), (folder), -1, EIO)
FAULTY(int, statfs, (const char* path, struct statfs* to), (path, to), -1, EIO)
FAULTY(ssize_t, readlink, (const char* path, char* to, size_t size), (path, to, size), -1, EACCES)
FAULTY(char*, realpath, (const char* path, char* to), (path, to), nullptr, ENOENT)
FAULTY(int, uname, (utsname * to), (to), -1, EFAULT)
FAULTY(int, gethostname, (char* to, size_t size), (to, size), -1, ENAMETOOLONG)
FAULTY(int, gettimeofday, (timeval * to, void* zone), (to, zone), -1, EFAULT)
FAULTY(int, posix_fadvise, (int fd, off_t at, off_t size, int advice), (fd, at, size, advice),
       EINVAL, EINVAL)
FAULTY(int, remove, (const char* path), (path), -1, EACCES)
FAULTY(FILE*, fopen, (const char* path, const char* mode), (path, mode), nullptr, EMFILE)
FAULTY(char*, fgets, (char* to, int size, FILE* from), (to, size, from), nullptr, EIO)
FAULTY(size_t, fwrite, (const void* from, size_t size, size_t count, FILE* to),
       (from, size, count, to), 0, ENOSPC)
FAULTY(int, fputs, (const char* text, FILE* to), (text, to), EOF, ENOSPC)
FAULTY(int, fflush, (FILE * stream), (stream), EOF, ENOSPC)

// The C++ library's loading of a locale doesn't survive each lack: its own allocations don't fail.
void _ZNSt6localeC1EPKc(void* made, const char* name) {
  static const auto real =
      reinterpret_cast<void (*)(void*, const char*)>(dlsym(RTLD_NEXT, __func__));
  const spared here;
  real(made, name);
}
// That it finds none itself is another matter. The name "C" is the library's own start.
locale_t __newlocale(int mask, const char* name, locale_t base) {
  static const auto real =
      reinterpret_cast<locale_t (*)(int, const char*, locale_t)>(dlsym(RTLD_NEXT, __func__));
  const bool fault = std::strcmp(name, "C") != 0 && fails(__func__, ENOMEM);
  return fault ? nullptr : real(mask, name, base);
}

}  // extern "C"
