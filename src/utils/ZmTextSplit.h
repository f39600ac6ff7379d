// Cuts texts into tokens and at commas: below scalars, ranges and expressions, which all split.
// Internal.
//
// Every function only appends to its outputs. ZmExpression's static operations of the like names
// are the public face and state the rules. White space is space, TAB, CR and LF.
#ifndef ZM_TEXT_SPLIT_H
#define ZM_TEXT_SPLIT_H

#include <string>
#include <string_view>

#include "ZmString.h"
#include "ZmStringList.h"
#include "ZmTextCursor.h"

// The languages whose tokens are separated by white space.
enum class ZmSyntax { kExpression, kCallback, kValue, kRange };

// Reads one token after another of a borrowed text.
class ZmTokens {
 public:
  ZmTokens(std::string_view text, ZmSyntax syntax) : in_(text), syntax_(syntax) {}
  // False at the end. The token is lent until the next call or the end of the text's life; one in
  // quotes comes without them.
  bool next(std::string_view& token);

 private:
  std::string_view _expression();
  std::string_view _callback();
  std::string_view _value();
  std::string_view _quoted();

  ZmTextCursor in_;
  ZmSyntax syntax_;
  std::string unescaped_;
};

void zm_tokenize(std::string_view text, ZmSyntax syntax, ZmStringList& tokens);

// Comma list with quotes and braces, which stay in the tokens; elements are trimmed.
void zm_split(std::string_view text, ZmStringList& tokens);

// At commas outside brackets; white space outside brackets is dropped.
void zm_split_comma(std::string_view text, ZmStringList& tokens);

#endif
