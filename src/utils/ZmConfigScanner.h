// Cuts the text of a macro configuration file into tokens and knows where each one stands.
// Internal; ZmConfigFile::tokenize() and the reader are its callers.
#ifndef ZM_CONFIG_SCANNER_H
#define ZM_CONFIG_SCANNER_H

#include <cstddef>
#include <forward_list>
#include <string>
#include <string_view>

#include "ZmTextCursor.h"

struct ZmConfigToken {
  std::string_view text;   // lent by the scanner for its lifetime
  std::size_t offset = 0;  // of its first byte, a quote or brace included, in the cleaned text

  // Tokens are plain texts: quoted or braced content that reads so acts as a sign, too.
  bool is(char sign) const { return text.size() == 1 && text[0] == sign; }
  bool endsline() const { return is('\n') || is('\r'); }
};

// A place in the source: lines and columns count from 1, columns in bytes.
struct ZmConfigPosition {
  long line = 1;
  long column = 1;
};

class ZmConfigScanner {
 public:
  // Borrows the text for the scanner's lifetime. What is neither printable ASCII nor a tab or line
  // end is passed over, as if it were not there.
  explicit ZmConfigScanner(std::string_view source);
  ZmConfigScanner(const ZmConfigScanner&) = delete;
  ZmConfigScanner& operator=(const ZmConfigScanner&) = delete;

  bool next(ZmConfigToken& token);  // false at the end

  // Where the token starts in the source. Asked for tokens in their order, all answers together
  // take one pass over the source.
  ZmConfigPosition position(const ZmConfigToken& token);

 private:
  enum class Pending { kNone, kContent, kQuote };

  bool pending(ZmConfigToken& token);
  std::string_view braced();
  std::string_view quoted();
  std::string_view unescaped(std::string_view text, char close, bool backslash);
  std::size_t offset() const { return text_.size() - in_.left(); }

  std::string_view source_;
  std::string cleaned_;    // the text when the source had to be cleaned
  std::string_view text_;  // what is scanned
  ZmTextCursor in_;
  std::forward_list<std::string> unescaped_;  // tokens that are no piece of the text
  Pending pending_ = Pending::kNone;          // what of a quoted value comes next
  ZmConfigToken content_;                     // its content
  std::size_t close_ = 0;                     // offset of its closing quote
  std::size_t passed_ = 0;                    // position(): cleaned bytes passed,
  std::size_t read_ = 0;                      // the source bytes they come from,
  ZmConfigPosition here_;                     // and the place reached
};

#endif
