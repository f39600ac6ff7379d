#include "ZmFileReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

namespace {

constexpr int kBlock = 4096;  // bytes by which a text grows at least

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
  text.clear();
  // The room that growth would come to, at once. A file that reports no size, as those of /proc do,
  // is read all the same.
  if (status.st_size >= text._size() && status.st_size < INT_MAX / 4)
    text._resize(static_cast<int>(status.st_size + 1) * 4);
  for (;;) {
    if (text._size() - text.length_ < 2) {
      const char none[kBlock] = {};
      text.append(none, kBlock);
      text.length_ -= kBlock;
    }
    const auto room = static_cast<std::size_t>(text._size() - text.length_ - 1);
    const ssize_t n = retried(file.get(), text._text() + text.length_, room);
    if (n > 0) text.length_ += static_cast<int>(n);
    text._text()[text.length_] = 0;
    if (n <= 0 || text.length_ == status.st_size) return true;
  }
}
