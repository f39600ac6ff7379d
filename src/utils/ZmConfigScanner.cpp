#include "ZmConfigScanner.h"

#include <algorithm>

namespace {

constexpr ZmCharSet kBlank(" \t"), kWordStop(" \t\"\n:[]=\r{}\\#");

// In blocks of a fixed size and without branches: the compiler takes many bytes at a time.
bool allkept(std::string_view text) {
  constexpr std::size_t kBlock = 64;
  unsigned dropped = 0;
  std::size_t at = 0;
  for (; dropped == 0 && at + kBlock <= text.size(); at += kBlock) {
    unsigned char any = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      const auto c = static_cast<unsigned char>(text[at + i]);
      const bool shown = static_cast<unsigned char>(c - 32) < 95;
      any |= static_cast<unsigned char>(!(shown | (c == '\t') | (c == '\n') | (c == '\r')));
    }
    dropped |= any;
  }
  for (; at < text.size(); ++at) dropped |= !ZmConfigScanner::kept(text[at]);
  return dropped == 0;
}

}  // namespace

ZmConfigScanner::ZmConfigScanner(std::string_view source)
    : source_(source), text_(source), in_(source) {
  if (allkept(source)) return;
  cleaned_.reserve(source.size());
  std::copy_if(source.begin(), source.end(), std::back_inserter(cleaned_), kept);
  text_ = cleaned_;
  in_ = ZmTextCursor(text_);
}

// Blanks separate and are no tokens, but for those at the very end; a comment goes up to its line
// end, which stays a token, since it ends the option before it.
bool ZmConfigScanner::next(ZmConfigToken& token) {
  if (pending_ != Pending::kNone) return pending(token);
  bool blank = !in_.skip(kBlank).empty();
  if (in_.is('#')) {
    comment_ = offset();
    in_.until_far("\n\r");
    blank = false;
  }
  token.offset = offset();
  if (in_.eof()) {
    token.text = {};
    return blank;  // blanks at the very end make one empty token
  }
  token.text = in_.until(kWordStop);
  if (!token.text.empty()) return true;
  if (in_.accept('{')) {
    token.text = braced();
  } else if (in_.is('"')) {
    token.text = in_.take();
    content_ = {quoted(), token.offset + 1};
    pending_ = Pending::kContent;
  } else {
    token.text = in_.take();  // a sign
  }
  return true;
}

// A quoted value comes as three tokens, its content in the middle, however empty: so the reader can
// tell "" from nothing. A content that is a lone quote is the closing one to it.
bool ZmConfigScanner::pending(ZmConfigToken& token) {
  if (pending_ == Pending::kContent) {
    token = content_;
    pending_ = Pending::kQuote;
  } else {
    token = {"\"", close_};
    pending_ = Pending::kNone;
  }
  return true;
}

// A backslash goes when it stands before a closing brace, which then is text.
std::string_view ZmConfigScanner::braced() {
  const ZmTextCursor start = in_;
  bool escaped = false;
  for (in_.until_far("\\}"); !in_.eof() && !in_.is('}'); in_.until_far("\\}")) {
    in_.take();
    if (in_.accept('}')) escaped = true;
  }
  const std::string_view text = start.rest().substr(0, start.left() - in_.left());
  if (in_.take().empty()) unclosed_ = text_.size() - start.left() - 1;
  return escaped ? unescaped(text, '}', false) : text;
}

// A backslash goes when it stands before a double quote or a backslash. The closing quote, or the
// line end in its place, is passed over; the opening one has been.
std::string_view ZmConfigScanner::quoted() {
  const ZmTextCursor start = in_;
  bool escaped = false;
  for (in_.until_far("\\\"\n\r"); in_.is('\\'); in_.until_far("\\\"\n\r")) {
    in_.take();
    if (in_.accept('"') || in_.accept('\\')) escaped = true;
  }
  const std::string_view text = start.rest().substr(0, start.left() - in_.left());
  close_ = offset();
  in_.take();
  return escaped ? unescaped(text, '"', true) : text;
}

// Tokens lend what is made here until the scanner goes: it must not move when more comes.
std::string_view ZmConfigScanner::unescaped(std::string_view text, char close, bool backslash) {
  std::string& plain = unescaped_.emplace_front();
  plain.reserve(text.size());
  for (ZmTextCursor in(text); !in.eof();) {
    if (in.is('\\') && (in.peek(1) == close || (backslash && in.peek(1) == '\\'))) in.take();
    plain += in.take();
  }
  return plain;
}
