#include "ZmFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "ZmFileReader.h"
#include "ZmText.h"

namespace {

constexpr int kName = 0, kData = 1, kSource = 2;  // tags of the record

// False only when the file can't be opened in this mode: callers learn nothing of a full disk.
bool put(const ZmString& path, const char* mode, const ZmString& text) {
  const ZmOpenFile file(std::fopen(path.value(), mode));
  if (!file) return false;
  std::fwrite(text.value(), 1, static_cast<std::size_t>(text.length()), file.get());
  return true;
}

// Whether the file, which is created when missing, opens for writing. Opening a pipe must not wait
// for its reader, nor a terminal become the one that controls this process.
bool opens(const ZmString& path, int how) {
  const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | how;
  const int fd = ::open(path.value(), flags, 0666);
  if (fd >= 0) ::close(fd);
  return fd >= 0;
}

// All zero when there is none.
struct stat status(const ZmString& path) {
  struct stat found {};
  ::stat(path.value(), &found);  // fills nothing in when it fails
  return found;
}

}  // namespace

int ZmFile::_file_unique = 0;

// The order of the fields is part of the format, as the tags are, which don't follow it.
void ZmFile::encode() {
  store(kName, name_);
  store(kSource, source_);
  store(kData, data_);
}

void ZmFile::decode() {
  restore(kName, name_);
  restore(kSource, source_);
  restore(kData, data_);
}

void ZmFile::encodeXML() {
  storeXML("name", name_);
  storeXML("source", source_);
  storeXML("data", data_);
}

void ZmFile::decodeXML() {
  restoreXML("name", name_);
  restoreXML("source", source_);
  restoreXML("data", data_);
}

void ZmFile::read(const ZmString& path) {
  ZmString source;
  source = path;  // a copy: the path may be one of the members
  ZmString name = filename(source);
  if (!zm_read_file(source, data_)) return;
  name_._swap(name);  // from here on nothing fails
  source_._swap(source);
}

ZmString ZmFile::load(const ZmString& path) {
  ZmString text;
  zm_read_file(path, text);
  return text;
}

int ZmFile::loadpos(const ZmString& path, long long pos, ZmString& out) {
  return loadpos(path, pos, -1, out);
}

// By a stream, whose idea of the position after the end was met is the contract.
int ZmFile::loadpos(const ZmString& path, long long pos, int len, ZmString& out) {
  if (!exists(path)) return -1;
  std::ifstream in(path.value(), std::ios::binary);
  if (pos >= 0) in.seekg(pos);
  char block[4096];
  for (int left = len; in && left != 0;) {
    constexpr int kBlock = sizeof block;
    in.read(block, left < 0 ? kBlock : std::min(left, kBlock));
    const int got = static_cast<int>(in.gcount());
    out.append(block, got);
    if (left > 0) left -= got;
  }
  // A stream that met the end has failed and knows no position.
  return static_cast<int>(static_cast<std::streamoff>(in.tellg()));
}

unsigned char ZmFile::save(const ZmString& path, const ZmString& text) {
  return put(path, "w", text);
}

void ZmFile::append(const ZmString& path, const ZmString& text) { put(path, "a", text); }

unsigned char ZmFile::exists(const ZmString& path) { return zm_regular_file(path); }

// Asks by trying, so permissions of groups and read-only disks count. The file exists afterwards.
unsigned char ZmFile::writable(const ZmString& path) { return opens(path, O_APPEND); }

long long ZmFile::size(const ZmString& path) { return status(path).st_size; }

std::time_t ZmFile::modified(const ZmString& path) { return status(path).st_mtime; }

unsigned char ZmFile::remove(const ZmString& path) { return ::unlink(path.value()) == 0; }

// The times are tried whatever became of the file: it may be a directory or a pipe.
unsigned char ZmFile::touch(const ZmString& path) {
  if (!exists(path)) opens(path, O_TRUNC);
  const std::time_t now = std::time(nullptr);
  const utimbuf times{now, now};
  ::utime(path.value(), &times);
  return 1;
}

// Placeholders: files have no such flag here.
unsigned char ZmFile::hidden(const ZmString&) { return 0; }

unsigned char ZmFile::clearhidden(const ZmString&) { return 0; }

unsigned char ZmFile::chown(const ZmString& path, unsigned int owner, unsigned int group) {
  return ::chown(path.value(), owner, group) == 0;
}

unsigned char ZmFile::chmod(const ZmString& path, unsigned short mode) {
  return ::chmod(path.value(), mode) == 0;
}

ZmString ZmFile::filename(const ZmString& path) {
  const auto text = zm_view(path);
  return zm_string(text.substr(text.rfind('/') + 1));  // without a slash: from 0 on
}

ZmString ZmFile::dirbase(const ZmString& path) {
  const auto text = zm_view(path);
  const auto slash = text.rfind('/');
  return slash == std::string_view::npos ? ZmString() : zm_string(text.substr(0, slash));
}

// Unique among the names that processes of this machine make at one time; no file is made.
ZmString ZmFile::uniquefile() {
  ZmString name("torvel");
  name += static_cast<int>(::getpid());
  name += "u";
  name += _file_unique;
  name += ".tmp";
  _file_unique = static_cast<int>(static_cast<unsigned>(_file_unique) + 1);  // wraps
  return name;
}
