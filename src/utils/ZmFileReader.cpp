#include "ZmFileReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <new>

namespace {

// Closes what it holds. A failure to close a file that was only read means nothing.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

// A signal that the program handles is no reason to lose the rest of a file.
ssize_t retried(int fd, char* to, std::size_t size) {
  ssize_t n = -1;
  do {
    n = ::read(fd, to, size);
  } while (n < 0 && errno == EINTR);
  return n;
}

}  // namespace

bool zm_regular_file(const ZmString& path) {
  struct stat status {};
  return ::stat(path.value(), &status) == 0 && S_ISREG(status.st_mode);
}

bool zm_read_file(const ZmString& path, ZmString& text) {
  // Opening a pipe must not wait for its other end.
  const Descriptor file(::open(path.value(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  // What can't fit is not read in vain; a file that grows meanwhile fails in append().
  if (status.st_size >= INT_MAX) throw std::bad_alloc();
  // Apart, so that the caller's text stays as it is until nothing can fail any more.
  ZmString whole;
  whole.secure(text.secure());
  // The room that growth would come to, at once. A file that reports no size, as those of /proc do,
  // is read all the same.
  const long long room = (static_cast<long long>(status.st_size) + 1) * 4;
  whole._resize(static_cast<int>(std::min<long long>(room, INT_MAX)));
  const auto more = [&file](char* to, std::size_t size) { return retried(file.get(), to, size); };
  while (whole._fill(more) > 0 && whole.length() != status.st_size) {
  }
  text._swap(whole);
  return true;
}
