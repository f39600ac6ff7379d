#ifndef ZM_ADDRESS_H
#define ZM_ADDRESS_H

/// @file
/// ZmAddress and its output.

#include <iosfwd>

#include "ZmPack.h"
#include "ZmString.h"

class ZmDebug;

/// One IPv4 address, or none (blank).
///
/// The value is a 32-bit number with the first octet in the most significant byte, whatever the
/// processor's byte order. A blank address has the value 0.
///
/// Its record: tag 1, int, the value. Its XML element: "value". Neither says whether the address is
/// blank; one that takes any other value than 0 from them no longer is.
class ZM_EXPORT ZmAddress : public ZmPack {
 public:
  ZmAddress() = default;                              ///< Blank.
  ZmAddress(int value) : value_(value), blank_(0) {}  ///< The value; 0 too is not blank.
  ZmAddress(const ZmString& text) { copy(text); }     ///< Blank, then copy(text).

  int type() const override { return 13; }                 ///< The type code.
  ZmString typeXML() const override { return "address"; }  ///< The XML element name.
  void encode() override;                                  ///< Stores the value.
  void decode() override;                                  ///< Restores the value.
  void encodeXML() override;                               ///< Stores the value.
  void decodeXML() override;                               ///< Restores the value.

  void copy(const ZmAddress& other) { *this = other; }  ///< Takes value and flag.
  /// Takes the numbers of the text, each modulo 256, as octets. Any single other character parts
  /// two of them, nothing between two is a 0, and missing ones at the end are 0: "1-2" is 1.2.0.0
  /// and "" is 0.0.0.0. A text with more than three such characters leaves the address alone.
  void copy(const ZmString& text);

  int value() const { return value_; }            ///< The 32-bit value.
  unsigned char blank() const { return blank_; }  ///< 1: never set, or wiped.
  void wipe();                                    ///< Makes it blank.

  ZmString stringvalue() const;  ///< Dotted decimal: "192.168.1.20".
  /// Three octets in two upper-case hexadecimal digits, the last one in decimal: "C0.A8.01.20".
  ZmString hexvalue() const;

  /// 1 for exactly four decimal numbers below 256 with "." between them; leading zeros are allowed.
  static unsigned char isaddress(const ZmString& text);
  /// Asks the system's resolver, which may take its time: the last IPv4 address of its answer, or
  /// a blank one.
  static ZmAddress hostname(const ZmString& name);

 private:
  int value_ = 0;
  unsigned char blank_ = 1;
};

/// Writes stringvalue().
ZM_EXPORT std::ostream& operator<<(std::ostream& out, const ZmAddress& address);
/// Writes stringvalue().
ZM_EXPORT ZmDebug& operator<<(ZmDebug& out, const ZmAddress& address);

#endif
