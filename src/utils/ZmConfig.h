#ifndef ZM_CONFIG_H
#define ZM_CONFIG_H

/// @file
/// ZmConfig, labels to be set in many of them, and functions for sorting.

#include <string_view>

#include "ZmAddress.h"
#include "ZmPack.h"
#include "ZmString.h"
#include "ZmStringHash.h"
#include "ZmStringList.h"

/// A label to be set in many sections: what is needed to look it up is worked out once.
struct ZmConfigLabel {
  /// Borrows the text.
  explicit ZmConfigLabel(std::string_view label)
      : text(label), hash(ZmBaseHashTable::hash(label)) {}

  std::string_view text;       ///< The label.
  ZmBaseHashTable::Hash hash;  ///< Its hash.
};

/// One named section of settings: labels in the order in which they were first set, each with a
/// text value, and the section's name and network address.
///
/// Lookups never fail: a missing label reads as the empty text. A section can also read a flat text
/// of its own, without headers, and merge its values into a template. One thread at a time.
///
/// Its record: tag 1, the address; tag 3, the label order; tag 0, the options; tag 2, text, the
/// name. Unpacking replaces each of these that the record holds. So does reading its XML form:
/// "name", "address" and "options", an "item" for each label in their order. Only where labels and
/// options don't agree, the label order stands in "labels" of its own.
class ZM_EXPORT ZmConfig : public ZmPack {
 public:
  /// @name Construction
  /// @{
  ZmConfig() = default;                           ///< Everything empty, not valid.
  ZmConfig(const ZmString& path) { load(path); }  ///< Then load(path).
  ZmConfig(const ZmConfig& other);                ///< Then copy(other).
  /// copy(other).
  ZmConfig& operator=(const ZmConfig& other) {
    copy(other);
    return *this;
  }
  /// Copies address, name, options and label order. A label order that is empty is made from the
  /// keys of the options, in hash order. The parsed text and the valid flag are not copied.
  void copy(const ZmConfig& other);
  /// @}

  int type() const override { return 50; }                ///< The type code.
  ZmString typeXML() const override { return "config"; }  ///< The XML element name.

  /// @name Options
  /// @{

  /// The value; an empty text when the label is absent. Lent until the label is next set or removed
  /// (inherit() and texts set labels, too), the section becomes a copy or is unpacked into, or the
  /// ZmConfigFile that has it reads on: parse() puts the expanded text into the same place.
  const ZmString& option(const ZmString& label) const;
  /// The value, lent likewise; null when the label is absent.
  const ZmString* find(std::string_view label) const;
  /// Sets the value. A new label goes to the end of the label order; a known one keeps its place.
  void option(const ZmString& label, const ZmString& value);
  /// The same for texts that are no ZmString. The position of a new label, -1 for a known one.
  int option(const ZmConfigLabel& label, std::string_view value, unsigned char secure = 0);
  unsigned char exists(const ZmString& label) const;  ///< Whether the label is set.
  /// Removes the label and its value; 0 when it was not set. A label that had been set anew after
  /// the removal of another may still have an older value, which then shows again, unlisted. Takes
  /// no longer in long sections, but where labels() can't follow the options (labels with a zero
  /// byte, values set anew as above, sections read from records): there it searches the labels.
  unsigned char remove(const ZmString& label);
  void labels(ZmStringList& list) const;  ///< Replaces the list by a copy of the label order.
  ZmStringList optionlist() const;        ///< A copy of the label order.
  /// Sets every label of the other section, in its order, to the value it has there.
  void inherit(const ZmConfig& other);
  /// 1 when every label of the other section has the same value here (an absent one counts as the
  /// empty text). Further labels of this section don't matter.
  unsigned char matchsubset(const ZmConfig& other) const;
  /// @}

  void name(const ZmString& name) { name_._fit(name); }           ///< Sets the name.
  const ZmString& name() const { return name_; }                  ///< The section's name.
  void address(const ZmAddress& address) { address_ = address; }  ///< Sets the address.
  const ZmAddress& address() const { return address_; }           ///< The section's address.
  /// The name of the machine that the program runs on; it has nothing to do with the section.
  ZmString host() const;

  /// @name Section text
  /// One "label = value" a line; "#" starts a comment; a header in brackets is passed over; white
  /// space inside a label is dropped. A value in single or double quotes, which end with the line,
  /// or in braces (nested, over several lines) is taken whole but for CRs; any other ends at white
  /// space, "#" or a byte above 127, and the rest of its line is ignored. Lines that don't fit are
  /// skipped.
  /// @{

  /// Reads the file's text; when it can't be read, as a directory, only the valid flag changes, to
  /// 0.
  void load(const ZmString& path);
  unsigned char parse(const ZmString& text);                          ///< Reads the text. Always 1.
  unsigned char revert(const ZmString& text) { return parse(text); }  ///< parse(text).
  unsigned char valid() const { return valid_; }  ///< Whether a text has been read.
  /// Whether the text is used up.
  unsigned char eof() const { return !text_ || text_->rest.empty(); }
  /// The byte under the cursor, sign-extended, and one step on; 0 at the end.
  int get();
  int peek() const;  ///< get() without the step.
  /// The section as text, one "label = value" a line: multi-line values in braces, others that hold
  /// white space in double quotes; nothing is escaped.
  ZmString convert() const;
  /// Merges the section into a template: its option lines, commented or not, get the section's
  /// values, those of labels that the section lacks are commented out, and what the template does
  /// not mention goes to its end. Behind a "#" a label begins with a lower-case letter, and one
  /// with a period is never found.
  ZmString usetemplate(const ZmString& text) const;
  ZmString loadtemplate(const ZmString& path) const;  ///< usetemplate() of a file's text.
  /// @}

  /// @name By position
  /// From 0 to length() - 1, in label order; no other position may be asked for. The first question
  /// after a removal but from the end goes through all options: before removing many, take the
  /// labels.
  /// @{

  /// The number of labels.
  int length() const { return labels_ ? labels_->length() : options_.length(); }
  /// The label, lent until the next change.
  const ZmString& label(int i) const {
    if (!labels_) return options_.key(i);
    const ZmString* label = labels_->get(i);
    return label ? *label : zm_no_text();
  }
  const ZmString& value(int i) const;         ///< Its value, lent as by option().
  void value(int i, std::string_view value);  ///< Sets its value.
  /// The position of a label; -1 when it is absent.
  int position(std::string_view label) const;
  /// @}

  void display() const;  ///< Prints a numbered listing.

  void encode() override;     ///< Stores every member.
  void decode() override;     ///< Restores every member.
  void encodeXML() override;  ///< Stores every member.
  void decodeXML() override;  ///< Restores every member.

 private:
  class Items;  // the options as an XML element

  ZmStringList& _list();
  ZmString* _valueat(int i) const;
  bool _ordered() const;
  int _add(const ZmBaseHashTable::Spot& spot, ZmBaseHashTable::Hash hash, ZmOwned<ZmString> key,
           ZmOwned<ZmString> value);

  unsigned char _parse();
  void _whitespace();
  bool _comment();
  bool _header();
  bool _option();
  bool _value(ZmString& out);

  ZmAddress address_;
  ZmString name_;
  // The label order. Null while it is that in which the options hold their entries: each label has
  // one entry, and a lookup finds it. Labels with a zero byte, a label that is set anew before the
  // place of its entry, copies that lose entries, and records make it differ.
  ZmOwned<ZmStringList> labels_;
  // The options, with their table at hand.
  struct Options : ZmStringHash {
    using ZmStringHash::_table;
  };
  Options options_;
  struct Text {
    ZmString text;
    std::string_view rest;  // what the cursor has not passed
  };
  ZmOwned<Text> text_;  // null unless one is being parsed
  unsigned char valid_ = 0;
};

/// Byte order: 1 when *a > *b, -1 when *a < *b, else 0.
ZM_EXPORT int _zm_config_cmp(const ZmString* a, const ZmString* b);
/// The same, under the name that list sorting uses.
ZM_EXPORT int zm_config_sort_func(const ZmString* a, const ZmString* b);

#endif
