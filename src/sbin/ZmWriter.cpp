#include "ZmWriter.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace {

// Whether a write that failed is worth another try: after an interruption, or once a pipe that
// doesn't wait takes bytes again.
bool again(int fd) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN) return false;
  pollfd room{fd, POLLOUT, 0};
  return ::poll(&room, 1, -1) > 0 || errno == EINTR;
}

}  // namespace

// What was collected goes out first, so that the bytes keep their order.
void ZmWriter::make_room(std::string_view text) {
  flush();
  if (text.size() > buffer_.size()) return send(text);  // copying it would gain nothing
  write(text);
}

// The buffer is empty afterwards, even when nothing could be written: otherwise make_room() and
// write() would call each other for ever.
bool ZmWriter::flush() {
  send({buffer_.data(), used_});
  used_ = 0;
  return good_;
}

// A write may take a part only. After a failure nothing more is sent: what arrives is a beginning
// of the output, never one with a gap.
void ZmWriter::send(std::string_view text) {
  while (good_ && !text.empty()) {
    const ssize_t n = ::write(fd_, text.data(), text.size());
    if (n >= 0) {
      text.remove_prefix(static_cast<std::size_t>(n));
    } else {
      good_ = again(fd_);
    }
  }
}
