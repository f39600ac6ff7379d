// The section text parser and templates of ZmConfig.
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "ZmConfig.h"
#include "ZmConfigOptionText.h"
#include "ZmFile.h"
#include "ZmFileReader.h"
#include "ZmText.h"
#include "ZmTextCursor.h"

namespace {

// What is no part of a label, in section text and in templates.
constexpr ZmCharSet kTextBlank(" \t\r"), kTemplateBlank(" \t");
constexpr ZmCharSet kPlainEnd(" \t\r\n#");
constexpr ZmCharSet kLabelEnd(".=");
constexpr ZmCharSet kLower("abcdefghijklmnopqrstuvwxyz");
constexpr std::string_view kNotIncluded = "# these are not included in the template";

// Takes what stands before the next c, and c.
void through(ZmConfig& in, int c) {
  while (!in.eof() && in.get() != c) {
  }
}

// The three forms of a value. Each appends it to `out` and gives the last byte read, 0 when the
// text ended.
// The quote that opened it closes it, and so does a line end. Nothing is escaped: a value with both
// kinds of quotes has to stand in braces.
int quoted(ZmConfig& in, ZmString& out) {
  const int quote = in.get();
  while (!in.eof()) {
    const int c = in.get();
    if (c == quote || c == '\n') return c;
    if (c != '\r') out.append(static_cast<char>(c));
  }
  return 0;
}

// Braces nest, over lines; the outermost pair is no part of the value.
int braced(ZmConfig& in, ZmString& out) {
  in.get();
  for (int depth = 1; !in.eof();) {
    const int c = in.get();
    if (c == '{') ++depth;
    if (c == '}' && --depth == 0) return c;
    if (c != '\r') out.append(static_cast<char>(c));
  }
  return 0;
}

// Ends at a byte above 127 too, since that is negative here; the byte is used up.
int plain(ZmConfig& in, ZmString& out) {
  while (!in.eof()) {
    const int c = in.get();
    if (c < 0 || kPlainEnd.has(c)) return c;
    out.append(static_cast<char>(c));
  }
  return 0;
}

// The next line of a template, without its newline. Newlines inside braces belong to the line.
std::string_view templateline(ZmTextCursor& in) {
  const std::string_view from = in.rest();
  for (std::size_t depth = 0; !in.eof() && (depth > 0 || !in.is('\n')); in.take()) {
    if (in.is('{')) ++depth;
    if (in.is('}') && depth > 0) --depth;
  }
  const std::string_view line = from.substr(0, from.size() - in.left());
  in.accept('\n');
  return line;
}

// The label that a template line sets, commented out or not; nothing when it sets none.
std::optional<std::string> templatelabel(std::string_view line) {
  ZmTextCursor in(line);
  if (in.accept('#')) {
    in.until(kLower);
    if (in.eof()) return std::nullopt;
  }
  std::string label;
  for (; !kLabelEnd.has(in.peek()); in.take()) {
    if (in.eof()) return std::nullopt;
    if (!kTemplateBlank.has(in.peek())) label += static_cast<char>(in.peek());
  }
  if (!in.is('=')) return std::nullopt;
  return label;
}

}  // namespace

void ZmConfig::load(const ZmString& path) {
  const ZmOpenFile file(std::fopen(path.value(), "r"));
  ZmString text;
  char block[1024];
  for (std::size_t n = sizeof block; file && n == sizeof block;) {
    n = std::fread(block, 1, sizeof block, file.get());
    text.append(block, static_cast<int>(n));
  }
  valid_ = file && !std::ferror(file.get());  // a directory opens, and then can't be read
  if (valid_) parse(text);
}

unsigned char ZmConfig::parse(const ZmString& text) {
  text_.reset(new Text{text, {}});
  valid_ = 1;
  return _parse();
}

// Signed, whatever char is: a byte above 127 ends a plain value.
int ZmConfig::peek() const { return eof() ? 0 : static_cast<signed char>(text_->rest[0]); }

int ZmConfig::get() {
  const int c = peek();
  if (!eof()) text_->rest.remove_prefix(1);
  return c;
}

unsigned char ZmConfig::_parse() {
  text_->rest = zm_view(text_->text);
  while (!eof()) {
    _whitespace();
    if (!_comment() && !_header() && !_option()) get();
  }
  text_.reset();
  return 1;
}

void ZmConfig::_whitespace() {
  while (kTextBlank.has(peek())) get();
}

bool ZmConfig::_comment() {
  if (eof() || peek() != '#') return false;
  through(*this, '\n');
  return true;
}

// A section text has no sections: the name of this one stays.
bool ZmConfig::_header() {
  if (eof() || peek() != '[') return false;
  through(*this, ']');
  return true;
}

// Blanks inside a label are dropped, so "max jobs" is "maxjobs" here, unlike in macro files.
// False only where the text ended: whatever else the line holds, it is used up.
bool ZmConfig::_option() {
  ZmString label;
  for (;;) {
    if (eof()) return false;
    if (_comment()) return true;
    const int c = get();
    if (c == '\n') return true;
    if (c == '=') break;
    if (!kTextBlank.has(c)) label.append(static_cast<char>(c));
  }
  ZmString value;
  if (!_value(value)) return false;
  option(label, value);
  return true;
}

bool ZmConfig::_value(ZmString& out) {
  if (eof()) return false;
  _whitespace();
  out.clear();
  const int first = peek();
  const int last = first == '\'' || first == '"' ? quoted(*this, out)
                   : first == '{'                ? braced(*this, out)
                                                 : plain(*this, out);
  if (last != '\n') through(*this, '\n');
  return true;
}

ZmString ZmConfig::loadtemplate(const ZmString& path) const {
  return usetemplate(ZmFile::load(path));
}

// An option goes to the first line of its label, commented out or not; further such lines go. The
// line that announces what the template lacks is left out and made anew, so that a result can serve
// as the next template without growing.
ZmString ZmConfig::usetemplate(const ZmString& text) const {
  ZmString result;
  std::unordered_set<std::string> used;  // labels that need no mention any more
  for (ZmTextCursor in(zm_view(text)); !in.eof();) {
    const std::string_view line = templateline(in);
    const auto label = templatelabel(line);
    const ZmString* value = label ? find(*label) : nullptr;
    if (value) {
      if (used.insert(*label).second) zm_append_option(result, zm_string(*label), *value);
    } else if (line != kNotIncluded) {
      if (label && line[0] != '#') {
        used.insert(*label);  // the label order of a record may name it all the same
        result.append('#');
      }
      zm_append(result, line);
      result.append('\n');
    }
  }
  ZmString unused;
  for (int i = 0; i < length(); ++i) {
    if (!used.contains(std::string(zm_view(label(i)))))
      zm_append_option(unused, label(i), value(i));
  }
  if (unused.length() > 0) {
    zm_append(result, kNotIncluded);
    result.append('\n');
    result += unused;
  }
  return result;
}
