#include "ZmTextSplit.h"

#include "ZmText.h"
#include "ZmTextList.h"

namespace {

constexpr ZmCharSet kQuote("\"'"), kParen("()"), kBracket("[]");
constexpr ZmCharSet kSingle("()*+-/:?"), kRelation("<=>");
constexpr ZmCharSet kExpressionStop(" \t\r\n+*/?:)(-&><=!|\"'");
constexpr ZmCharSet kWordStop(" \t\r\n()\"'"), kRangeStop(" \t\r\n[]");
constexpr ZmCharSet kSplitStop(",\"'{"), kBrace("{}"), kBracketEnd("]");

// Skips "{" and what belongs to it; gives the contents without the outer braces. An unclosed group
// runs to the end.
std::string_view braced(ZmTextCursor& in) {
  in.take();
  const std::string_view from = in.rest();
  for (int depth = 1; !in.eof();) {
    in.until(kBrace);
    depth += in.is('{') ? 1 : -1;
    if (depth == 0) break;
    in.take();
  }
  const std::string_view contents = from.substr(0, from.size() - in.left());
  in.take();
  return contents;
}

// Skips a quoted part with its quotes; a backslash takes the next character with it.
void skipquoted(ZmTextCursor& in) {
  const char quote = in.take()[0];
  while (!in.eof() && !in.is(quote)) in.take(in.is('\\') ? 2 : 1);
  in.take();
}

// Up to the comma or the end, as it stands in the text.
std::string_view splitelement(ZmTextCursor& in) {
  const std::string_view from = in.rest();
  while (!in.eof() && !in.is(',')) {
    if (kQuote.has(in.peek())) {
      skipquoted(in);
    } else if (in.is('{')) {
      braced(in);
    }
    in.until(kSplitStop);
  }
  return zm_trimmed(from.substr(0, from.size() - in.left()));
}

}  // namespace

bool ZmTokens::next(std::string_view& token) {
  in_.skip(kZmSpace);
  if (in_.eof()) return false;
  if (syntax_ == ZmSyntax::kRange) {
    token = kBracket.has(in_.peek()) ? in_.take() : in_.until(kRangeStop);
  } else if (kQuote.has(in_.peek())) {
    token = _quoted();
  } else {
    token = syntax_ == ZmSyntax::kExpression ? _expression()
            : syntax_ == ZmSyntax::kCallback ? _callback()
                                             : _value();
  }
  return true;
}

std::string_view ZmTokens::_expression() {
  const int c = in_.peek();
  if (!kExpressionStop.has(c)) return in_.until(kExpressionStop);
  if (kSingle.has(c)) return in_.take();
  if (kRelation.has(c)) return in_.take(kRelation.has(in_.peek(1)) ? 2 : 1);
  return in_.take(in_.peek(1) == (c == '!' ? '=' : c) ? 2 : 1);  // "!", "&" and "|" are left
}

std::string_view ZmTokens::_callback() {
  return kParen.has(in_.peek()) ? in_.take() : in_.until(kWordStop);
}

// A comma inside a word does not end it: "a,b" is one token. A parenthesis is one of its own, lest
// the scan stand still before it.
std::string_view ZmTokens::_value() {
  if (in_.is(',')) return in_.take();
  return in_.is('{') ? braced(in_) : _callback();
}

// Escapes are resolved; an unterminated string ends with the input.
std::string_view ZmTokens::_quoted() {
  const char quote = in_.take()[0];
  const std::string_view from = in_.rest();
  while (!in_.eof() && !in_.is(quote) && !in_.is('\\')) in_.take();
  if (!in_.is('\\')) {
    const std::string_view plain = from.substr(0, from.size() - in_.left());
    in_.take();
    return plain;
  }
  unescaped_.assign(from.substr(0, from.size() - in_.left()));
  while (!in_.eof() && !in_.is(quote)) {
    if (in_.is('\\') && in_.left() > 1) in_.take();  // a lone last backslash is text
    unescaped_ += in_.take();
  }
  in_.take();
  return unescaped_;
}

void zm_tokenize(std::string_view text, ZmSyntax syntax, ZmStringList& tokens) {
  ZmTokens in(text, syntax);
  for (std::string_view token; in.next(token);) zm_push(tokens, token);
}

// An empty element counts where a comma ends it: ",x" has two elements, "a," has one.
void zm_split(std::string_view text, ZmStringList& tokens) {
  for (ZmTextCursor in(text); !in.eof();) {
    const std::string_view element = splitelement(in);
    if (in.accept(',') || !element.empty()) zm_push(tokens, element);
  }
}

// A scan step takes a bracket group or not, and then one more byte as ordinary text: so a "[" right
// behind a group opens none.
void zm_split_comma(std::string_view text, ZmStringList& tokens) {
  std::string token;
  for (ZmTextCursor in(text); !in.eof();) {
    if (in.is('[')) {
      token += in.until(kBracketEnd);
      token += in.take();
    }
    if (in.accept(',')) {
      zm_push(tokens, token);
      token.clear();
    } else if (in.skip(kZmSpace).empty()) {
      token += in.take();
    }
  }
  if (!token.empty()) zm_push(tokens, token);
}
