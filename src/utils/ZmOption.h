#ifndef ZM_OPTION_H
#define ZM_OPTION_H

#include "ZmPack.h"
#include "ZmString.h"

/// One option that a ZmParam knows, and what the command line said about it.
///
/// A value class. Its record is empty: an option describes one run and is not stored.
class ZM_EXPORT ZmOption : public ZmPack {
 public:
  /// Tag 0, without name and value, not given.
  ZmOption() = default;
  /// An option of kind `tag` (1 flag, 2 string, 3 integer, 4 difference), not given.
  ZmOption(int tag, const ZmString& name) : tag_(tag), name_(name) {}
  /// copy(other): the value stays undefined.
  ZmOption(const ZmOption& other);
  /// copy(other).
  ZmOption& operator=(const ZmOption& other);
  ~ZmOption() override = default;

  int type() const override { return 53; }                ///< The type code.
  ZmString typeXML() const override { return "option"; }  ///< The XML element name.
  void encode() override {}                               ///< Stores nothing.
  void decode() override {}                               ///< Restores nothing.
  void encodeXML() override {}                            ///< Stores nothing.
  void decodeXML() override {}                            ///< Restores nothing.

  /// Takes over the definition and whether the option was given; the value held here stays.
  virtual void copy(const ZmOption& other);

  int tag() const { return tag_; }                         ///< The kind, 1 to 4.
  const ZmString& name() const { return name_; }           ///< The full name without dashes.
  void name(const ZmString& name) { name_ = name; }        ///< Sets the name.
  const ZmString& value() const { return value_; }         ///< What was given; undefined before.
  void value(const ZmString& value) { value_ = value; }    ///< Sets the value.
  unsigned char exists() const { return exists_; }         ///< Not 0 once the option was given.
  void exists(unsigned char exists) { exists_ = exists; }  ///< Sets the flag.

  /// The length of s when the name begins with s, else 0; 0 for an empty s. Case counts.
  int match(const ZmString& s) const;

 private:
  int tag_ = 0;
  ZmString name_;
  ZmString value_;
  unsigned char exists_ = 0;
};

#endif
