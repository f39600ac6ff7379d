#include "ZmWriter.h"

#include <unistd.h>

#include <cerrno>

void ZmWriter::make_room(std::string_view text) {
  flush();
  if (text.size() > buffer_.size()) return send(text);
  write(text);
}

bool ZmWriter::flush() {
  send({buffer_.data(), used_});
  used_ = 0;
  return good_;
}

ZmWriter::int_type ZmWriter::overflow(int_type c) {
  if (c != traits_type::eof()) write(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

std::streamsize ZmWriter::xsputn(const char* text, std::streamsize count) {
  write(std::string_view(text, static_cast<std::size_t>(count)));
  return count;
}

void ZmWriter::send(std::string_view text) {
  while (good_ && !text.empty()) {
    const ssize_t n = ::write(fd_, text.data(), text.size());
    if (n >= 0) {
      text.remove_prefix(static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      good_ = false;
    }
  }
}
