// The tokens and the splitting of ZmExpression.
#include <algorithm>
#include <string_view>
#include <utility>

#include "ZmExpression.h"
#include "ZmText.h"
#include "ZmTextList.h"
#include "ZmTextSplit.h"

namespace {

constexpr ZmCharSet kQuote("\"'"), kParen("()"), kName("ABCDEFGHIJKLMNOPQRSTUVWXYZ_");
constexpr ZmCharSet kCommandStop("ABCDEFGHIJKLMNOPQRSTUVWXYZ()");

// With its quotes and backslashes. Only the byte before a quote decides whether it closes.
std::string_view commandquoted(ZmTextCursor& in) {
  const std::string_view from = in.rest();
  std::size_t end = 1;
  while (end < from.size() && (from[end] != from[0] || from[end - 1] == '\\')) ++end;
  return in.take(end + 1);
}

// Names are upper case; what stands between them is one token, blanks included, so that the tokens
// of a command join back to it.
std::string_view commandtoken(ZmTextCursor& in) {
  if (kQuote.has(in.peek())) return commandquoted(in);
  if (kParen.has(in.peek())) return in.take();
  if (kName.has(in.peek())) return in.skip(kName);
  return in.until(kCommandStop);
}

// Splits at position `end`: the left without white space, the right without leading one.
void halves(std::string_view text, std::size_t end, ZmString& left, ZmString& right) {
  for (const char c : text.substr(0, end))
    if (!kZmSpace.has(c)) left.append(c);
  ZmTextCursor in(text.substr(std::min(end + 1, text.size())));
  in.skip(kZmSpace);
  zm_append(right, in.rest());
}

}  // namespace

void ZmExpression::tokenize(const ZmString& source, ZmStringList& tokens) {
  zm_tokenize(zm_view(source), ZmSyntax::kExpression, tokens);
}

void ZmExpression::callbacktokenize(const ZmString& source, ZmStringList& tokens) {
  zm_tokenize(zm_view(source), ZmSyntax::kCallback, tokens);
}

void ZmExpression::valuetokenize(const ZmString& source, ZmStringList& tokens) {
  zm_tokenize(zm_view(source), ZmSyntax::kValue, tokens);
}

void ZmExpression::rangetokenize(const ZmString& source, ZmStringList& tokens) {
  zm_tokenize(zm_view(source), ZmSyntax::kRange, tokens);
}

void ZmExpression::commandtokenize(const ZmString& source, ZmStringList& tokens) {
  for (ZmTextCursor in(zm_view(source)); !in.eof();) zm_push(tokens, commandtoken(in));
}

void ZmExpression::split(const ZmString& source, ZmStringList& elements) {
  zm_split(zm_view(source), elements);
}

// Each element is its own key: what is asked is only whether it is there.
void ZmExpression::split(const ZmString& source, ZmStringHash& elements) {
  ZmStringList list;
  split(source, list);
  for (int i = 0; i < list.length(); ++i) {
    const ZmString& element = *list.get(i);
    ZmOwned<ZmString> value(new ZmString(element));
    elements.set(std::move(value), ZmOwned<ZmString>(new ZmString(element)));
  }
}

void ZmExpression::splitcomma(const ZmString& source, ZmStringList& elements) {
  zm_split_comma(zm_view(source), elements);
}

void ZmExpression::splitslash(const ZmString& source, ZmStringList& elements) {
  splitchar(source, '/', elements);
}

void ZmExpression::splittab(const ZmString& source, ZmStringList& elements) {
  splitchar(source, '\t', elements);
}

// A separator at the end starts no further element.
void ZmExpression::splitchar(const ZmString& source, char separator, ZmStringList& elements) {
  for (std::string_view text = zm_view(source); !text.empty();) {
    const std::size_t end = std::min(text.find(separator), text.size());
    zm_push(elements, text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

void ZmExpression::splitspace(const ZmString& source, ZmStringList& elements) {
  ZmTextCursor in(zm_view(source));
  for (in.skip(kZmSpace); !in.eof(); in.skip(kZmSpace)) zm_push(elements, in.until(kZmSpace));
}

// Nothing is trimmed here, unlike below.
void ZmExpression::splitperiod(const ZmString& source, ZmString& left, ZmString& right) {
  const std::string_view text = zm_view(source);
  const std::size_t end = std::min(text.find('.'), text.size());
  zm_append(left, text.substr(0, end));
  zm_append(right, text.substr(std::min(end + 1, text.size())));
}

// At the first "=", so that the right part may hold more of them.
unsigned char ZmExpression::splitequal(const ZmString& source, ZmString& left, ZmString& right) {
  const std::string_view text = zm_view(source);
  const std::size_t end = std::min(text.find('='), text.size());
  halves(text, end, left, right);
  return end < text.size();
}

// Also ends at a "="; without either the last byte is left out.
unsigned char ZmExpression::splitbecomes(const ZmString& source, ZmString& left, ZmString& right) {
  const std::string_view text = zm_view(source);
  if (text.empty()) return 0;
  const std::size_t end = std::min(text.find_first_of(":="), text.size() - 1);
  const bool becomes = text[end] == ':';
  halves(becomes ? text : text.substr(0, end), end, left, right);
  return becomes;
}
