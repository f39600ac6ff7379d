// The reader of macro configuration files: what it says about positions, that it repeats itself,
// and that references expand as a plain recursion would expand them.
#include <cstdint>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmConfigFile.h"
#include "ZmConfigPlaces.h"
#include "ZmConfigReference.h"
#include "ZmConfigScanner.h"
#include "ZmText.h"
#include "require.h"

namespace {

// Tokens stand in the text one behind the other, and at the place that is told.
void checktokens(std::string_view text) {
  ZmConfigScanner scanner(text);
  const ZmConfigPlaces places(text);
  std::size_t offset = 0;
  ZmConfigPosition last;
  for (ZmConfigToken token; scanner.next(token); offset = token.offset) {
    require(token.offset >= offset && token.offset <= text.size());
    const ZmConfigPosition at = places.at(token.offset);
    require(at.line > last.line || (at.line == last.line && at.column >= last.column));
    last = at;
  }
  std::string joined;
  for (ZmTextCursor in(text); !in.eof();) joined += zm_value_word(in);
  require(joined == text);
}

using Option = std::pair<std::string, std::string>;  // a section and a label

// One expansion as a plain recursion, with circles found by walking from each option to the other.
struct Recursion {
  const ZmConfigFile& file;
  ZmString scope;
  long steps = 0;
  std::map<Option, std::set<Option>> known;

  std::string text(const ZmString& section, const std::string& label) {
    const ZmConfig* config = file.config(section);
    return config ? std::string(zm_view(config->option(zm_string(label)))) : std::string();
  }

  // Calls `copy` for what is copied as it is and `refer` for each qualified reference.
  template <class Copy, class Refer>
  void pieces(std::string_view self, std::string_view value, Copy copy, Refer refer) {
    for (ZmTextCursor in(value); !in.eof() && ++steps < 50000;) {
      std::string_view word = zm_value_word(in);
      if (word != "$") {
        copy(word);
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
        copy(word == "_" ? std::string(zm_view(scope)) : text(scope, std::string(word)));
      } else if (label == "_") {
        copy(word);
      } else if (!label.empty()) {
        refer(Option(word, label));
      }
      if (braced) in.accept('}');
    }
  }

  // The options that one leads to by references to options with a "$".
  const std::set<Option>& reached(const Option& from) {
    const auto [at, made] = known.try_emplace(from);
    std::set<Option>& found = at->second;
    std::vector<Option> todo{from};
    while (made && !todo.empty()) {
      const Option option = todo.back();
      todo.pop_back();
      const std::string value = text(zm_string(option.first), option.second);
      pieces(
          option.first, value, [](std::string_view) {},
          [&](const Option& to) {
            if (text(zm_string(to.first), to.second).find('$') != std::string::npos &&
                found.insert(to).second)
              todo.push_back(to);
          });
    }
    return found;
  }

  std::string expanded(const Option* from, std::string_view self, std::string_view value) {
    std::string out;
    pieces(
        self, value, [&](std::string_view copied) { out += copied; },
        [&](const Option& to) {
          if (from && reached(*from).contains(to) && reached(to).contains(*from)) return;
          out += expanded(&to, to.first, text(zm_string(to.first), to.second));
        });
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
      Recursion plain{file, name, 0, {}};
      const std::string expected = plain.expanded(nullptr, zm_view(name), zm_view(value));
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
  if (!modestfile(text)) return 0;
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
