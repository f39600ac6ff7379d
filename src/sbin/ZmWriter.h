// Collects output and writes it in large pieces. Internal, for the tools.
#ifndef ZM_WRITER_H
#define ZM_WRITER_H

#include <array>
#include <cstddef>
#include <cstring>
#include <streambuf>
#include <string_view>

// Also the buffer of a standard stream: what the library prints there then keeps its place, and a
// stream tied to that one, as std::cerr is to std::cout, writes out what was collected before.
class ZmWriter : public std::streambuf {
 public:
  explicit ZmWriter(int fd) : fd_(fd) {}
  ZmWriter(const ZmWriter&) = delete;
  ZmWriter& operator=(const ZmWriter&) = delete;

  void write(std::string_view text) {
    if (text.size() > buffer_.size() - used_) return make_room(text);
    std::memcpy(buffer_.data() + used_, text.data(), text.size());
    used_ += text.size();
  }
  void write(char c) { write(std::string_view(&c, 1)); }
  // Writes what is collected, and waits where it must. False once anything could not be written;
  // what follows is then dropped.
  bool flush();

 protected:
  int sync() override { return flush() ? 0 : -1; }
  // Without a put area: every byte that a stream writes comes here.
  int_type overflow(int_type c) override {
    if (c != traits_type::eof()) write(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
  }

 private:
  void make_room(std::string_view text);
  void send(std::string_view text);

  int fd_;
  bool good_ = true;
  std::size_t used_ = 0;
  std::array<char, 65536> buffer_;
};

#endif
