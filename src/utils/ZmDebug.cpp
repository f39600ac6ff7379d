#include "ZmDebug.h"

#include <unistd.h>

#include <ctime>
#include <iostream>

#include "ZmFile.h"
#include "ZmFileReader.h"
#include "ZmHost.h"
#include "ZmTextNumber.h"

namespace {

constexpr int kWeeks = 53;  // files of one year, the last one for the odd days
constexpr const char* kMonths[] = {"Jan ", "Feb ", "Mar ", "Apr ", "May ", "Jun ",
                                   "Jul ", "Aug ", "Sep ", "Oct ", "Nov ", "Dec "};

constinit int verbosity = ~4096;

struct Log {
  ZmDebug object;
  bool open = false;  // whether what is written goes to the file
  ZmOpenFile file;    // null when it could not be opened: it then swallows what is written
};

// Never destroyed: static constructors and destructors of other files may log. What the file has
// not written at the end of the process goes with the other files of the C library.
Log& process() {
  static Log* const log = new Log;
  return *log;
}

// Static constructors may get here before the standard streams are set up for this file.
std::ostream& standardoutput() {
  static const std::ios_base::Init ready;
  return std::cout;
}

bool localnow(std::tm& local) {
  const std::time_t now = std::time(nullptr);
  return ::localtime_r(&now, &local) != nullptr;
}

// By hand: strftime() knows month names of the locale and no unpadded hour.
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
  text += zm_hostname();
  text += "[";
  text += static_cast<int>(::getpid());
  text += "]: ";
  return text;
}

}  // namespace

void ZmDebug::filename(const ZmString& name) { filename_ = name; }

// How a program that runs on gets to the file of the next week: the next write opens one anew.
void ZmDebug::unlock() {
  process().file.reset();
  process().open = false;
}

// Once a file is open it serves every object: which one wrote first decides until unlock().
bool ZmDebug::_open() {
  if (process().open) return true;
  if ((mode_ != 0 && mode_ != 1) || filename_.length() == 0) return false;
  ZmString name(filename_);
  if (mode_ == 1) {
    std::tm local{};
    if (!localnow(local)) return false;
    name += ".";
    name += local.tm_yday / 7;
  }
  process().file.reset(std::fopen(name.value(), "ae"));  // "e": not for programs that are started
  return process().open = true;
}

// A clock that tells nothing is no reason to lose what is logged behind the mark.
ZmDebug& ZmDebug::mark() {
  std::tm local{};
  return localnow(local) ? *this << prefix(local) : *this;
}

// Unformatted: what the program has set on its streams, and its locale, are not for the log.
ZmDebug& ZmDebug::_write(std::string_view text) {
  if (!_open()) {
    standardoutput().write(text.data(), static_cast<std::streamsize>(text.size()));
  } else if (process().file) {
    std::fwrite(text.data(), 1, text.size(), process().file.get());
  }
  return *this;
}

ZmDebug& ZmDebug::operator<<(const char* value) { return value ? _write(value) : *this; }
// Up to a zero byte, as the operator for standard streams has it.
ZmDebug& ZmDebug::operator<<(const ZmString& value) { return _write(value.value()); }
ZmDebug& ZmDebug::operator<<(int value) { return _write(ZmNumberText(value).view()); }
ZmDebug& ZmDebug::operator<<(unsigned int value) { return *this << static_cast<long long>(value); }
ZmDebug& ZmDebug::operator<<(long long value) { return _write(ZmNumberText(value).view()); }
ZmDebug& ZmDebug::operator<<(float value) {
  return _write(ZmNumberText(value, std::chars_format::general).view());
}
ZmDebug& ZmDebug::operator<<(char value) { return _write({&value, 1}); }

ZmDebug& zm_debug_obj() { return process().object; }
int zm_debug_verb() { return verbosity; }
void zm_debug_verbosity(int mask) { verbosity = mask; }

void zm_debug_filename(const ZmString& name, int mode) {
  zm_debug_obj().filename(name);  // first: it may throw
  zm_debug_obj().mode(mode);
}

void zm_debug_logfiles(const ZmString& base, ZmStringList& list) {
  for (int week = 0; week < kWeeks; ++week) {
    const ZmString name = base + "." + week;
    if (ZmFile::exists(name)) list._push(new ZmString(name));
  }
}
