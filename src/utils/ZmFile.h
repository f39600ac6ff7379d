#ifndef ZM_FILE_H
#define ZM_FILE_H

#include <ctime>

#include "ZmPack.h"
#include "ZmString.h"

/// Whole files and small file utilities; an object carries one file's contents inside a pack.
///
/// Every path is used as given, relative to the current directory when it isn't absolute. Nothing
/// is cached or locked, and nothing tells why it failed. Booleans are 0 or 1. One thread at a time.
///
/// Contents are texts: a file of 2,147,483,647 bytes or more fails as an allocation failure does
/// (std::bad_alloc), with everything as it was before. Only regular files are read, never a pipe;
/// save() and append() write to anything that can be opened, and wait for the reader of a pipe.
///
/// Its record: tag 0 the name, tag 2 the source, tag 1 the data, all texts. Its XML elements:
/// "name", "source", "data".
class ZM_EXPORT ZmFile : public ZmPack {
 public:
  ZmFile() = default;                           ///< Everything empty.
  ZmFile(const ZmString& path) { read(path); }  ///< read(path).

  int type() const override { return 105; }             ///< The type code.
  ZmString typeXML() const override { return "file"; }  ///< The XML element name.
  void encode() override;                               ///< Stores the three members.
  void decode() override;                               ///< Restores the three members.
  void encodeXML() override;                            ///< Stores the three members.
  void decodeXML() override;                            ///< Restores the three members.

  /// @name One file
  /// @{

  /// Takes the contents of a regular file, its name and its path. When it is none or can't be
  /// opened, the object stays as it was: compare source() to tell. A read error ends the contents
  /// there.
  void read(const ZmString& path);
  /// save(path, data()).
  unsigned char write(const ZmString& path) const { return save(path, data_); }
  ZmString& name() { return name_; }                  ///< The last component of the path.
  const ZmString& name() const { return name_; }      ///< The same.
  ZmString& source() { return source_; }              ///< The path as given to read().
  const ZmString& source() const { return source_; }  ///< The same.
  ZmString& data() { return data_; }                  ///< The contents, byte for byte.
  const ZmString& data() const { return data_; }      ///< The same.
  /// @}

  /// @name Contents
  /// @{

  /// The whole contents; empty when it is no regular file or can't be opened for reading.
  static ZmString load(const ZmString& path);
  /// loadpos(path, pos, -1, out).
  static int loadpos(const ZmString& path, long long pos, ZmString& out);
  /// Appends up to `len` bytes (all that follow when negative) from byte `pos` on (from the start
  /// when negative) to `out`. Gives the position behind them modulo 2^32; -1 when the file can't be
  /// read, and also when its end was met: whoever reads piece by piece is done at -1. What was read
  /// before a std::bad_alloc stays in `out`.
  static int loadpos(const ZmString& path, long long pos, int len, ZmString& out);
  /// Replaces or creates the file. 0 only when it can't be opened: a failing write goes unnoticed.
  static unsigned char save(const ZmString& path, const ZmString& text);
  /// Writes at the end of the file, which is created when missing. Failure goes unnoticed.
  static void append(const ZmString& path, const ZmString& text);
  /// @}

  /// @name Status
  /// @{
  static unsigned char exists(const ZmString& path);  ///< A regular file, or a link to one.
  /// Whether it can be opened for appending, at once: a pipe without a reader can't. A missing file
  /// is created, empty, by the attempt.
  static unsigned char writable(const ZmString& path);
  static long long size(const ZmString& path);  ///< In bytes; 0 when there is no status.
  /// Last modification in seconds since the epoch; 0 when there is no status.
  static std::time_t modified(const ZmString& path);
  /// @}

  /// @name Changes
  /// 1 when done, unless said otherwise.
  /// @{
  static unsigned char remove(const ZmString& path);  ///< Unlinks a file, not a directory.
  /// Creates a missing file, then sets both times to the current second. Always 1. Never waits.
  static unsigned char touch(const ZmString& path);
  static unsigned char hidden(const ZmString& path);       ///< Does nothing. Always 0.
  static unsigned char clearhidden(const ZmString& path);  ///< Does nothing. Always 0.
  /// Sets the user and group id.
  static unsigned char chown(const ZmString& path, unsigned int owner, unsigned int group);
  /// Sets the permission bits.
  static unsigned char chmod(const ZmString& path, unsigned short mode);
  /// @}

  /// @name Names
  /// @{
  static ZmString filename(const ZmString& path);  ///< What stands behind the last slash.
  static ZmString dirbase(const ZmString& path);   ///< What stands before the last slash, or "".
  /// A file name, without directory, that this process has not given before: "torvel", the process
  /// id, "u", a counter from 0, ".tmp". No file is made.
  static ZmString uniquefile();
  /// @}

 private:
  static int _file_unique;

  ZmString unused_;  // holds a place: derived classes are built against the layout
  ZmString name_;
  ZmString source_;
  ZmString data_;
};

#endif
