#ifndef ZM_DEBUG_H
#define ZM_DEBUG_H

/// @file
/// ZmDebug, and the log of the process.

#include <string_view>

#include "ZmString.h"
#include "ZmStringList.h"

/// The debug log: messages go to standard output, to one file or to one file a week.
///
/// The file is opened by the first write, which appends, and stays open until unlock() or the end
/// of the process. Messages for a file that can't be opened are lost without a report: a log must
/// not disturb the program. Nothing is locked; the open file is shared by all objects.
///
/// The file is written in blocks and closed in programs that the process starts. A child made by
/// fork() shares it, and writes once more what its parent had not written yet: unlock() before.
///
///     zm_debug_obj().mark() << "started\n";
class ZM_EXPORT ZmDebug {
 public:
  ZmDebug() = default;  ///< Mode 0, without a file name.
  ZmDebug(const ZmDebug&) = delete;
  ZmDebug& operator=(const ZmDebug&) = delete;
  ~ZmDebug() = default;

  /// 0: the file itself; 1: "NAME.N" with the week of the year N, 0 to 52; other: standard output.
  void mode(int mode) { mode_ = mode; }
  int mode() const { return mode_; }  ///< The mode.
  /// Keeps a copy of the name; without one, or with "", standard output is written to. A file that
  /// is open stays in use until unlock().
  void filename(const ZmString& name);
  void lock() {}  ///< Does nothing: the pair of unlock().
  /// Closes the file. The next write opens it again, and so finds the file of the current week.
  void unlock();
  /// Writes a message's prefix in local time: "[Mar 3, 2026 7:04:09] host[pid]: ".
  ZmDebug& mark();

  /// @name Writing
  /// With the formatting of fresh standard streams in the "C" locale, whatever the program's locale
  /// is or was set on std::cout. Null writes nothing.
  /// @{
  ZmDebug& operator<<(const char* value);      ///< A text.
  ZmDebug& operator<<(const ZmString& value);  ///< A text.
  ZmDebug& operator<<(int value);              ///< A number.
  ZmDebug& operator<<(unsigned int value);     ///< A number.
  ZmDebug& operator<<(long long value);        ///< A number.
  /// A number; what std::int64_t may be.
  ZmDebug& operator<<(long value) { return *this << static_cast<long long>(value); }
  ZmDebug& operator<<(float value);  ///< A number.
  ZmDebug& operator<<(char value);   ///< A character.

  /// @}

 private:
  bool _open();  // false: standard output
  ZmDebug& _write(std::string_view text);

  ZmString filename_;
  int mode_ = 0;
};

/// The one object of the process. Ready before any static constructor and until the last static
/// destructor runs.
ZM_EXPORT ZmDebug& zm_debug_obj();
/// The verbosity, a mask whose bits the callers define; all but 4096 are set at the start.
ZM_EXPORT int zm_debug_verb();
/// Sets the verbosity.
ZM_EXPORT void zm_debug_verbosity(int mask);
/// Sets mode and file name of zm_debug_obj().
ZM_EXPORT void zm_debug_filename(const ZmString& name, int mode);
/// Appends the names of the weekly files that exist, "BASE.0" to "BASE.52" in this order.
ZM_EXPORT void zm_debug_logfiles(const ZmString& base, ZmStringList& list);

#endif
