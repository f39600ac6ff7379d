#include "ZmConfigReference.h"

#include <algorithm>

namespace {

constexpr ZmCharSet kRun(" \t"), kSign(".{}\\$\r"), kWordStop(" \t\r.{}\\$");

}  // namespace

std::string_view zm_value_word(ZmTextCursor& in) {
  if (kRun.has(in.peek())) return in.skip(kRun);
  return kSign.has(in.peek()) ? in.take() : in.until(kWordStop);
}

// Only the word right behind the "$" is looked at: in "$farm.self" it names an option.
std::string zm_local_value(std::string_view section, std::string_view value) {
  std::string local;
  for (ZmTextCursor in(value); !in.eof();) {
    const std::string_view word = zm_value_word(in);
    local += word;
    if (word != "$") continue;
    if (in.accept('{')) local += '{';
    const std::string_view name = zm_value_word(in);
    local += name == "self" || name == "this" ? section : name;
  }
  return local;
}

// Everything odd about references is here and nowhere else. Farms have values that rest on each of
// these steps, so their order is part of the format: which text is lost depends on it.
ZmConfigPiece ZmConfigScope::next(ZmTextCursor& in, std::string_view self) const {
  ZmConfigPiece piece;
  if (!in.is('$')) {
    const std::string_view rest = in.rest();
    piece.text = in.take(std::min(rest.find('$'), rest.size()));
    return piece;
  }
  in.take();
  const bool braced = in.accept('{');
  if (in.eof()) return piece;  // a lone "$" or "${" vanishes
  std::string_view word = zm_value_word(in);
  if (word == "self" || word == "this") word = self;
  piece.qualified = in.is('.');
  piece.scoped = !piece.qualified;
  const ZmConfig* home = piece.qualified ? section(word) : config;
  piece.section = piece.qualified ? word : name;
  piece.known = home;
  if (!home) return piece;  // the reference is dropped up to here, what follows is text
  if (piece.qualified) in.take();
  // Behind an unqualified reference the next word is always lost, whatever it is.
  const std::string_view behind = zm_value_word(in);
  const bool closed = braced && !piece.qualified && behind == "}";
  if (!piece.qualified && !closed) piece.lost = behind;
  if (braced && in.is('}')) {
    const std::string_view brace = in.take();
    if (closed) piece.lost = brace;
  }
  piece.label = piece.qualified ? behind : word;
  if (piece.label == "_") {
    piece.text = piece.section;
    // A section may be named "$": such a result is read again once it is stored.
    piece.scoped |= zm_has_reference(piece.text);
  } else if (!piece.qualified || !behind.empty()) {
    piece.value = home->find(piece.label);
  }
  return piece;
}
