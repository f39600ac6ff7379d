#include "ZmDebug.h"

#include <unistd.h>

#include <ctime>
#include <fstream>
#include <iostream>
#include <utility>

#include "ZmFile.h"

namespace {

constexpr int kWeeks = 53;  // files of one year, the last one for the odd days
constexpr const char* kMonths[] = {"Jan ", "Feb ", "Mar ", "Apr ", "May ", "Jun ",
                                   "Jul ", "Aug ", "Sep ", "Oct ", "Nov ", "Dec "};

// Set up at compile time and never destroyed, so that static constructors and destructors of other
// files can log.
constinit std::ofstream* _zm_debug_ofs = nullptr;
constinit union Global {
  constexpr Global() : object() {}
  ~Global() {}  // NOLINT(modernize-use-equals-default): that would be a deleted one
  ZmDebug object;
} _zm_debug_global_obj;
constinit int _zm_debug_verbosity = ~4096;

// Closes the file at exit. Who logs later gets each piece written at once.
constinit bool _zm_debug_exiting = false;
struct AtExit {
  ~AtExit() {
    _zm_debug_exiting = true;
    _zm_debug_global_obj.object.unlock();
  }
} const at_exit;

// Static constructors may get here before the standard streams are set up for this file.
std::ostream& standardoutput() {
  static const std::ios_base::Init ready;
  return std::cout;
}

bool localnow(std::tm& local) {
  const std::time_t now = std::time(nullptr);
  return ::localtime_r(&now, &local) != nullptr;
}

// "" when the system doesn't tell it.
ZmString hostname() {
  char name[1024] = {};
  ::gethostname(name, sizeof name - 1);
  return name;
}

ZmString prefix(const std::tm& local) {
  ZmString text("[");
  if (local.tm_mon >= 0 && local.tm_mon < 12) text += kMonths[local.tm_mon];
  text += local.tm_mday;
  text += ", ";
  text += local.tm_year + 1900;
  text += " ";
  text += local.tm_hour;
  text += ":";
  text.integervalue(local.tm_min, 2);
  text += ":";
  text.integervalue(local.tm_sec, 2);
  text += "] ";
  text += hostname();
  text += "[";
  text += static_cast<int>(::getpid());
  text += "]: ";
  return text;
}

}  // namespace

void ZmDebug::filename(const ZmString& name) { filename_ = std::make_unique<ZmString>(name); }

void ZmDebug::unlock() { delete std::exchange(_zm_debug_ofs, nullptr); }

std::ostream* ZmDebug::_stream() {
  if (_zm_debug_ofs) return _zm_debug_ofs;
  if ((mode_ != 0 && mode_ != 1) || !filename_ || filename_->length() == 0) return nullptr;
  ZmString name(*filename_);
  if (mode_ == 1) {
    std::tm local{};
    if (!localnow(local)) return nullptr;
    name += ".";
    name += local.tm_yday / 7;
  }
  // Kept even when it can't be opened: it then swallows what is written.
  return _zm_debug_ofs = new std::ofstream(name.value(), std::ios::app);
}

ZmDebug& ZmDebug::mark() {
  std::tm local{};
  return localnow(local) ? *this << prefix(local) : *this;
}

template <class T>
ZmDebug& ZmDebug::_write(const T& value) {
  std::ostream* stream = _stream();
  (stream ? *stream : standardoutput()) << value;
  if (_zm_debug_exiting) unlock();
  return *this;
}

ZmDebug& ZmDebug::operator<<(const char* value) { return value ? _write(value) : *this; }
ZmDebug& ZmDebug::operator<<(const ZmString& value) { return _write(value); }
ZmDebug& ZmDebug::operator<<(int value) { return _write(value); }
ZmDebug& ZmDebug::operator<<(unsigned int value) { return _write(value); }
ZmDebug& ZmDebug::operator<<(long long value) { return _write(value); }
ZmDebug& ZmDebug::operator<<(float value) { return _write(value); }
ZmDebug& ZmDebug::operator<<(char value) { return _write(value); }

ZmDebug& zm_debug_obj() { return _zm_debug_global_obj.object; }
int zm_debug_verb() { return _zm_debug_verbosity; }
void zm_debug_verbosity(int mask) { _zm_debug_verbosity = mask; }

void zm_debug_filename(const ZmString& name, int mode) {
  zm_debug_obj().mode(mode);
  zm_debug_obj().filename(name);
}

void zm_debug_logfiles(const ZmString& base, ZmStringList& list) {
  for (int week = 0; week < kWeeks; ++week) {
    auto name = std::make_unique<ZmString>(base + "." + week);
    if (ZmFile::exists(*name) && list.push(name.get())) static_cast<void>(name.release());
  }
}
