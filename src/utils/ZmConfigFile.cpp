#include "ZmConfigFile.h"

#include <iostream>
#include <string>
#include <string_view>

#include "ZmConfigExpander.h"
#include "ZmConfigReader.h"
#include "ZmFile.h"
#include "ZmText.h"
#include "ZmTextList.h"

ZmConfigFile::ZmConfigFile(const ZmString& path, unsigned char lowercase) : lowercase_(lowercase) {
  parse(ZmFile::load(path));
}

int ZmConfigFile::type() const { return 80; }

void ZmConfigFile::parse(const ZmString& text) {
  // The text may be an option of a section here, which reading it can change. With no section yet
  // it can't be: then the text of a file is not copied.
  std::string own;
  if (sections_.length() > 0) own = zm_view(text);
  const std::string_view source = own.empty() ? zm_view(text) : own;
  ZmConfigReader(sections_, default_section_, lowercase_ != 0, source).run();
}

void ZmConfigFile::tokenize(const ZmString& text, ZmStringList& tokens) const {
  ZmConfigScanner scanner(zm_view(text));
  for (ZmConfigToken token; scanner.next(token);) zm_push(tokens, token.text);
}

// Behind what the list holds, so that the names of several files come into one.
void ZmConfigFile::keys(ZmStringList& list) const {
  ZmStringList names;
  sections_.copykeys(names);
  for (int i = 0; i < names.length(); ++i) list._push(new ZmString(*names.get(i)));
}

// For debugging: in the order of the hash, with every value in quotes. zmconfigfile prints its own.
void ZmConfigFile::display() const {
  ZmStringList names;
  keys(names);
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig& section = *config(*names.get(i));
    std::cout << '[' << *names.get(i) << "]\n";
    for (int n = 0; n < section.length(); ++n)
      std::cout << section.label(n) << " = '" << section.value(n) << "'\n";
  }
}

void ZmConfigFile::stringtokenize(const ZmString& text, ZmStringList& tokens) const {
  for (ZmTextCursor in(zm_view(text)); !in.eof();) zm_push(tokens, zm_value_word(in));
}

ZmString ZmConfigFile::_localvalue(const ZmString& section, const ZmString& value) const {
  return zm_string(zm_local_value(zm_view(section), zm_view(value)));
}

ZmString ZmConfigFile::_value(const ZmString& scope, const ZmString& self,
                              const ZmString& value) const {
  return zm_string(
      ZmConfigExpander(sections_).expand(zm_view(scope), zm_view(self), zm_view(value), nullptr));
}
