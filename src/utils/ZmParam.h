#ifndef ZM_PARAM_H
#define ZM_PARAM_H

#include "ZmBase.h"
#include "ZmOptionList.h"
#include "ZmString.h"
#include "ZmStringList.h"

/// A command-line parser: define options by name and kind, parse() once, then read them back.
///
/// On the command line an option is any number of dashes and its name, or a beginning of the name
/// that fits no other option; its value is the next argument. The first argument that doesn't begin
/// with a dash, or that is an integer such as -5, ends the options: it and all after it are
/// positional. The flags "help" and "version" are built in.
///
/// Names are compared with case; of several options with one name the first counts. Not copyable;
/// one thread at a time.
class ZM_EXPORT ZmParam : public ZmBase {
 public:
  /// Knows the flags "help" and "version", in this order.
  ZmParam();
  ZmParam(const ZmParam&) = delete;
  ZmParam& operator=(const ZmParam&) = delete;
  ~ZmParam() override;                     ///< Slot 0.
  virtual int type() const { return 81; }  ///< Slot 1. The type code.

  /// @name Defining options
  /// Each appends one and returns 1; 0 when no memory could be had, which changes nothing.
  /// @{
  unsigned char defineFlag(const ZmString& name);          ///< Takes no value.
  unsigned char defineStringOption(const ZmString& name);  ///< Takes any argument, "" and -x too.
  /// Takes an argument made of digits and "-" only, in any order; "--" passes and reads as 0.
  unsigned char defineIntegerOption(const ZmString& name);
  /// Takes an integer that may have a "+" or "-" in front: 7 sets, +7 and -7 change by 7.
  unsigned char defineDiffOption(const ZmString& name);
  void setHelp(void (*help)()) { help_ = help; }              ///< Called for "help"; may be null.
  void setVersion(void (*version)()) { version_ = version; }  ///< Called for "version"; or null.
  /// @}

  /// @name Parsing
  /// 1 when all was understood. 0 at the first error: error() tells it, nothing is printed, options
  /// before it count as given and there are no positional arguments.
  ///
  /// When "help" or else "version" was given, its function is called and the process ends with
  /// status 0. Parsing again replaces the positional arguments and keeps what options hold.
  /// @{
  unsigned char parse(int argc, char** argv);  ///< argv[0] becomes name().
  unsigned char parse(ZmStringList& args);     ///< The list is only read.
  /// @}

  /// @name Reading options back
  /// 0, with the output left alone, when no option has exactly this name or (but for flags) it was
  /// not given; else 1.
  /// @{
  unsigned char get(const ZmString& name, unsigned char& flag) const;  ///< Not 0: it was given.
  unsigned char get(const ZmString& name, ZmString& v) const;  ///< v becomes the value as given.
  unsigned char get(const ZmString& name, int& v) const;       ///< Its integervalue().
  /// For difference options: `sign` is '+' or '-' and v the number behind it, or '=' and v the
  /// whole number. "-3" gives '-' and 3. 0 also when the value is empty.
  unsigned char get(const ZmString& name, int& v, char& sign) const;
  unsigned char defined(const ZmString& name) const { return find(name) != nullptr; }  ///< Known.
  ZmOption* find(const ZmString& name) const;  ///< The option, lent; null when there is none.
  /// @}

  int length() const { return count_; }  ///< Number of positional arguments.
  /// The positional argument at i, from 0; the program name for any i outside 0..length()-1.
  const ZmString& arg(int i) const;
  /// Text of the last error, as it is to be printed.
  const ZmString& error() const { return error_; }
  const ZmString& name() const { return name_; }  ///< The program name.

  void displayHeader() const;  ///< Prints all options in one line on standard output.
  void displayHelp() const;    ///< Prints one option a line on standard output.

 private:
  unsigned char _define(int tag, const ZmString& name);
  unsigned char _fail(const ZmString& message);  // always 0
  unsigned char _option(const ZmStringList& args, int& index);
  ZmOption* _choose(const ZmString& argument);                     // null: the error is set
  void _ambiguous(const ZmString& argument, const ZmString& key);  // sets the error
  const ZmOption* _given(const ZmString& name) const;

  ZmString name_;
  ZmOptionList options_;
  ZmString* arguments_ = nullptr;  // one element more than there were arguments
  int count_ = 0;
  ZmString error_;
  void (*help_)() = nullptr;
  void (*version_)() = nullptr;
};

#endif
