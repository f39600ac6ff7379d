#include "ZmConfigFile.h"

#include <iostream>

#include "ZmConfigReader.h"
#include "ZmExpander.h"
#include "ZmFile.h"
#include "ZmText.h"

ZmConfigFile::ZmConfigFile(const ZmString& path, unsigned char lowercase) : lowercase_(lowercase) {
  parse(ZmFile::load(path));
}

int ZmConfigFile::type() const { return 80; }

void ZmConfigFile::parse(const ZmString& text) {
  ZmConfigReader(sections_, default_section_, lowercase_ != 0, view(text)).run();
}

void ZmConfigFile::tokenize(const ZmString& text, ZmStringList& tokens) const {
  ZmConfigScanner scanner(view(text));
  for (ZmConfigToken token; scanner.next(token);) tokens.push(new ZmString(zm_string(token.text)));
}

void ZmConfigFile::keys(ZmStringList& list) const {
  ZmStringList names;
  sections_.keys(names);
  for (int i = 0; i < names.length(); ++i) list.push(new ZmString(*names.get(i)));
  names.release();
}

void ZmConfigFile::display() const {
  ZmStringList names;
  keys(names);
  for (int i = 0; i < names.length(); ++i) {
    const ZmConfig& section = *config(*names.get(i));
    std::cout << '[' << *names.get(i) << "]\n";
    const ZmStringList labels = section.optionlist();
    for (int n = 0; n < labels.length(); ++n)
      std::cout << *labels.get(n) << " = '" << section.option(*labels.get(n)) << "'\n";
  }
}

void ZmConfigFile::stringtokenize(const ZmString& text, ZmStringList& tokens) const {
  for (ZmCursor in(view(text)); !in.eof();) tokens.push(new ZmString(zm_string(zm_value_word(in))));
}

ZmString ZmConfigFile::_localvalue(const ZmString& section, const ZmString& value) const {
  return zm_string(zm_local_value(view(section), view(value)));
}

ZmString ZmConfigFile::_value(const ZmString& scope, const ZmString& self,
                              const ZmString& value) const {
  return zm_string(ZmExpander(sections_).expand(view(scope), view(self), view(value), nullptr));
}
