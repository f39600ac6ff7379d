// The reader of macro configuration files: what it says about positions, that it repeats itself,
// and that references expand as a plain recursion would expand them.
#include <cstdint>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "ZmConfigFile.h"
#include "ZmConfigScanner.h"
#include "ZmExpander.h"
#include "ZmText.h"

namespace {

void require(bool condition) {
  if (!condition) __builtin_trap();
}

// References can ask for exponential results, and brackets for many sections.
bool modest(std::string_view text) {
  int references = 0, brackets = 0, digits = 0;
  for (const char c : text) {
    references += c == '$';
    brackets += c == '[';
    digits = c >= '0' && c <= '9' ? digits + 1 : c >= 32 && c <= 126 ? 0 : digits;
    if (digits > 2) return false;
  }
  return text.size() <= 1024 && references <= 24 && brackets <= 12;
}

// Tokens stand in the text one behind the other, and at the place that is told.
void checktokens(std::string_view text) {
  ZmConfigScanner scanner(text);
  std::size_t offset = 0;
  ZmConfigPosition last;
  for (ZmConfigToken token; scanner.next(token); offset = token.offset) {
    require(token.offset >= offset && token.offset <= text.size());
    const ZmConfigPosition at = scanner.position(token);
    require(at.line > last.line || (at.line == last.line && at.column >= last.column));
    last = at;
  }
  std::string joined;
  for (ZmCursor in(text); !in.eof();) joined += zm_value_word(in);
  require(joined == text);
}

// One expansion, with the chain of options under expansion.
struct Recursion {
  const ZmConfigFile& file;
  ZmString scope;
  std::set<std::pair<std::string, std::string>> chain;
  long steps = 0;

  std::string option(const ZmString& section, std::string_view label) {
    const ZmConfig* config = file.config(section);
    return config ? std::string(zm_view(config->option(zm_string(label)))) : std::string();
  }

  std::string expanded(std::string_view self, std::string_view value) {
    std::string out;
    for (ZmCursor in(value); !in.eof() && ++steps < 50000;) {
      std::string_view word = zm_value_word(in);
      if (word != "$") {
        out += word;
        continue;
      }
      const bool braced = in.accept('{');
      if (in.eof()) break;
      word = zm_value_word(in);
      if (word == "self" || word == "this") word = self;
      const bool qualified = in.is('.');
      if (!file.config(qualified ? zm_string(word) : scope)) continue;
      if (qualified) in.take();
      const std::string_view label = zm_value_word(in);
      if (!qualified) {
        out += word == "_" ? std::string(zm_view(scope)) : option(scope, word);
      } else if (label == "_") {
        out += word;
      } else if (!label.empty() && chain.emplace(word, label).second) {
        out += expanded(word, option(zm_string(word), label));
        chain.erase({std::string(word), std::string(label)});
      }
      if (braced) in.accept('}');
    }
    return out;
  }
};

void checkvalues(const ZmConfigFile& file) {
  ZmStringList names;
  file.keys(names);
  for (int i = 0; i < names.length(); ++i) {
    const ZmString& name = *names.get(i);
    const ZmStringList labels = file.config(name)->optionlist();
    for (int n = 0; n < labels.length(); ++n) {
      const ZmString& value = file.config(name)->option(*labels.get(n));
      Recursion plain{file, name, {}};
      const std::string expected = plain.expanded(zm_view(name), zm_view(value));
      if (plain.steps < 50000) require(zm_view(file._value(name, name, value)) == expected);
    }
  }
}

std::string printed(const ZmConfigFile& file) {
  std::string text;
  ZmStringList names;
  file.keys(names);
  names.sort();
  for (int i = 0; i < names.length(); ++i) {
    text += "[" + std::string(zm_view(*names.get(i))) + "]\n";
    text += zm_view(file.config(*names.get(i))->convert());
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  checktokens(text);
  if (!modest(text)) return 0;
  std::cerr.setstate(std::ios::failbit);  // no warnings
  ZmConfigFile file, again;
  file.parse(zm_string(text));
  again.parse(zm_string(text));
  require(printed(file) == printed(again));
  again.parse(zm_string(text));  // nothing is new now, so references stay
  checkvalues(again);
  std::cerr.clear();
  return 0;
}
