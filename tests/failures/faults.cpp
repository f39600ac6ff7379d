#include "faults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

// The functions under the C library's names have others here, so that its headers are not
// contradicted: `open` has any number of arguments, and with large files it is another one.
#define ZM_NAMED(symbol) __asm__(#symbol)

// AddressSanitizer's functions where it is linked in, else the C library's.
extern "C" {
void* asan_malloc(std::size_t) ZM_NAMED(__interceptor_malloc) __attribute__((weak));
void* asan_calloc(std::size_t, std::size_t) ZM_NAMED(__interceptor_calloc) __attribute__((weak));
void* asan_realloc(void*, std::size_t) ZM_NAMED(__interceptor_realloc) __attribute__((weak));
void* asan_memalign(std::size_t, std::size_t) ZM_NAMED(__interceptor_memalign)
    __attribute__((weak));
void asan_free(void*) ZM_NAMED(__interceptor_free) __attribute__((weak));
void* libc_malloc(std::size_t) ZM_NAMED(__libc_malloc);
void* libc_calloc(std::size_t, std::size_t) ZM_NAMED(__libc_calloc);
void* libc_realloc(void*, std::size_t) ZM_NAMED(__libc_realloc);
void* libc_memalign(std::size_t, std::size_t) ZM_NAMED(__libc_memalign);
void libc_free(void*) ZM_NAMED(__libc_free);
}

namespace {

faults::Kind failing = faults::kMemory;
long left = 0;  // calls up to the one that fails; 0: none does
bool hit = false;
bool told = false;  // on descriptor 3
long blocks = 0;

bool fails(faults::Kind kind) {
  if (left == 0 || kind != failing || --left > 0) return false;
  hit = true;
  if (told) static_cast<void>(::write(3, "!", 1));
  errno = kind == faults::kMemory ? ENOMEM : EIO;
  return true;
}

void* counted(void* block) {
  if (block) ++blocks;
  return block;
}

// The function of that name that this program would call without the one here.
template <class Function>
Function* behind_this(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

// Whatever is done with the file from now on fails by itself: as on a disk that was taken away.
void cut_off(std::FILE* file) {
  const int none = ::open("/dev/null", O_PATH | O_CLOEXEC);
  ::dup3(none, ::fileno(file), O_CLOEXEC);
  ::close(none);
}

}  // namespace

void faults::arm(Kind kind, long n) {
  failing = kind;
  hit = false;
  left = n;
}

void faults::disarm() { left = 0; }
bool faults::failed() { return hit; }
long faults::live() { return blocks; }

extern "C" {

void* faulty_malloc(std::size_t size) ZM_NAMED(malloc);
void* faulty_calloc(std::size_t n, std::size_t size) ZM_NAMED(calloc);
void* faulty_realloc(void* block, std::size_t size) ZM_NAMED(realloc);
void* faulty_aligned(std::size_t alignment, std::size_t size) ZM_NAMED(aligned_alloc);
int faulty_memalign(void** block, std::size_t alignment, std::size_t size) ZM_NAMED(posix_memalign);
void faulty_free(void* block) ZM_NAMED(free);

void* faulty_malloc(std::size_t size) {
  if (fails(faults::kMemory)) return nullptr;
  return counted((asan_malloc ? asan_malloc : libc_malloc)(size));
}

void* faulty_calloc(std::size_t n, std::size_t size) {
  if (fails(faults::kMemory)) return nullptr;
  return counted((asan_calloc ? asan_calloc : libc_calloc)(n, size));
}

void* faulty_realloc(void* block, std::size_t size) {
  if (fails(faults::kMemory)) return nullptr;
  void* const moved = (asan_realloc ? asan_realloc : libc_realloc)(block, size);
  if (block && !moved && size == 0) --blocks;
  return block ? moved : counted(moved);
}

void* faulty_aligned(std::size_t alignment, std::size_t size) {
  if (fails(faults::kMemory)) return nullptr;
  return counted((asan_memalign ? asan_memalign : libc_memalign)(alignment, size));
}

int faulty_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = faulty_aligned(alignment, size);
  return *block ? 0 : ENOMEM;
}

void faulty_free(void* block) {
  if (block) --blocks;
  (asan_free ? asan_free : libc_free)(block);
}

// What the file functions do instead of failing, and what they give.
#define ZM_FAULTY(result, symbol, parameters, arguments, instead, failure) \
  result faulty_##symbol parameters ZM_NAMED(symbol);                      \
  result faulty_##symbol parameters {                                      \
    static const auto next = behind_this<result parameters>(#symbol);      \
    if (!fails(faults::kFiles)) return next arguments;                     \
    instead;                                                               \
    return failure;                                                        \
  }

ZM_FAULTY(std::FILE*, fopen, (const char* path, const char* mode), (path, mode), , nullptr)
ZM_FAULTY(std::FILE*, fopen64, (const char* path, const char* mode), (path, mode), , nullptr)
ZM_FAULTY(std::size_t, fread, (void* to, std::size_t size, std::size_t n, std::FILE* file),
          (to, size, n, file), cut_off(file), next(to, size, n, file))
ZM_FAULTY(std::size_t, fwrite, (const void* from, std::size_t size, std::size_t n, std::FILE* file),
          (from, size, n, file), cut_off(file), next(from, size, n, file))
ZM_FAULTY(int, fclose, (std::FILE * file), (file), next(file), EOF)
ZM_FAULTY(int, open64, (const char* path, int flags, unsigned mode), (path, flags, mode), , -1)
ZM_FAULTY(int, close, (int fd), (fd), next(fd), -1)
ZM_FAULTY(ssize_t, read, (int fd, void* to, std::size_t size), (fd, to, size), , -1)
ZM_FAULTY(ssize_t, write, (int fd, const void* from, std::size_t size), (fd, from, size), , -1)
ZM_FAULTY(int, stat64, (const char* path, struct stat* status), (path, status), , -1)
ZM_FAULTY(int, fstat64, (int fd, struct stat* status), (fd, status), , -1)
}

void* operator new(std::size_t size) {
  if (void* block = std::malloc(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

// A program that is linked with --wrap=main has ZM_FAULT, as "memory12", in its environment.
extern "C" {
int main_itself(int argc, char** argv) ZM_NAMED(__real_main) __attribute__((weak));
int main_armed(int argc, char** argv) ZM_NAMED(__wrap_main);
int main_armed(int argc, char** argv) {
  const std::string_view fault = std::getenv("ZM_FAULT");
  told = true;
  faults::arm(fault[0] == 'm' ? faults::kMemory : faults::kFiles,
              std::atol(fault.substr(fault.find_first_of("0123456789")).data()));
  return main_itself(argc, argv);
}
}
