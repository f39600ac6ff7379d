#ifndef ZM_CONFIG_FILE_H
#define ZM_CONFIG_FILE_H

#include "ZmBase.h"
#include "ZmConfig.h"
#include "ZmConfigHash.h"
#include "ZmString.h"
#include "ZmStringList.h"

/// Reads macro configuration files into named sections.
///
/// A file is a sequence of headers and options:
///
///     [base]                        # a section
///     root = /opt/farm
///     label = "fast box"            # quotes keep blanks
///     note = {first line
///     second line}                  # braces keep lines
///     [node[001-200]] : base        # many sections at once, with the options of a parent
///     log = $base.root              # a reference to an option of another section
///     owner = $_                    # the section's own name
///     other . key = 1               # an option of another section: the period stands alone
///
/// Unquoted values lose their blanks, an empty value takes the next line, a parent must stand above
/// its children, and a line without "=" ends the file. Options above the first header go to the
/// default section. When the text has been read, the references in every value are expanded.
///
/// Options that refer to each other in a circle are no error: the references between them give
/// nothing, whoever asks, and the first of them that is reached is named in a warning.
///
/// The reader owns its sections. It prints warnings about missing parents and about circles on
/// standard error; nothing else is reported. One thread at a time.
class ZM_EXPORT ZmConfigFile : public ZmBase {
 public:
  ZmConfigFile() = default;  ///< No sections; the default section is named "default".
  /// Reads the file; a path that can't be read counts as an empty file. With `lowercase` the names
  /// of sections in headers and of parents are lower-cased; those of options and of qualifiers, and
  /// values, never are.
  ZmConfigFile(const ZmString& path, unsigned char lowercase);
  ~ZmConfigFile() override = default;  ///< Slot 0. Destroys the sections.
  virtual int type() const;            ///< Slot 1. The type code, 80.

  /// Adds what the text says to the sections that are there. Only the sections that this call makes
  /// have their references expanded.
  void parse(const ZmString& text);
  /// Appends the tokens of a text.
  void tokenize(const ZmString& text, ZmStringList& tokens) const;

  /// Appends a copy of every section name, in the order of the hash.
  void keys(ZmStringList& list) const;
  /// The section, lent for as long as the reader has it: parse() changes sections where they are.
  /// Null when there is none of this name. Renaming a section changes what it says of itself, not
  /// the name by which it is found here and by references.
  ZmConfig* config(const ZmString& name) const { return sections_.get(name); }
  const ZmConfigHash& sections() const { return sections_; }  ///< The sections, lent.
  ZmConfigHash export_hash() const { return sections_; }      ///< A deep copy of the sections.
  void release() { sections_.release(); }  ///< Forgets the sections without destroying them.
  void display() const;                    ///< Prints every section, values in single quotes.

  const ZmString& default_section_name() const { return default_section_; }  ///< Its name.
  /// Names the section of the options above the first header, from the next parse() on.
  void default_section_name(const ZmString& name) { default_section_ = name; }

  /// @name Values
  /// @{

  /// Appends the words of a value: runs of blanks, each of ". { } \ $" and CR, runs of anything
  /// else. Joined they give the value.
  void stringtokenize(const ZmString& text, ZmStringList& tokens) const;
  /// A value as it is stored in a section: references to "self" and "this" name that section.
  ZmString _localvalue(const ZmString& section, const ZmString& value) const;
  /// A value with its references replaced: unqualified ones are looked up in section `scope`, and
  /// `self` stands for "self" and "this". Circles are found anew, with their warnings, by each
  /// call.
  ZmString _value(const ZmString& scope, const ZmString& self, const ZmString& value) const;
  /// @}

 private:
  ZmConfigHash sections_;
  ZmString default_section_ = "default";
  unsigned char lowercase_ = 0;
};

#endif
