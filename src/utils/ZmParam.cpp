#include "ZmParam.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>
#include <utility>

#include "ZmText.h"
#include "ZmTextCursor.h"
#include "ZmTextNumber.h"

namespace {

enum Kind { kFlag = 1, kString, kInteger, kDifference };

constexpr ZmCharSet kIntegerChars("0123456789-"), kDash("-");

// "-5" and a lone "-" are values, not options.
bool isoption(const ZmString& argument) { return argument.get(0) == '-' && !argument.isinteger(); }

bool issigned(const ZmString& text) { return text.get(0) == '-' || text.get(0) == '+'; }

ZmString unsignedpart(const ZmString& text) { return text.substr(1, text.length()); }

ZmString notinteger(const ZmString& text) {
  return "ERROR: parameter '" + text + "' is not an integer\n";
}

// Why an integer option refuses the value; empty when it doesn't. Lenient on purpose: any mix of
// digits and "-" will do.
ZmString integererror(const ZmString& argument, const ZmString& value) {
  if (value.length() == 0) return "ERROR: option expects an integer '" + argument + "'";
  const auto fits = [](char c) { return kIntegerChars.has(c); };
  return std::ranges::all_of(zm_view(value), fits) ? ZmString() : notinteger(value);
}

// The same for a difference option. A sign in front of a negative number ("+-5") will do.
ZmString differenceerror(const ZmString& argument, const ZmString& value) {
  if (value.length() == 0) return "ERROR: parameter '" + argument + "' is blank\n";
  bool fits = kZmDigits.has(value.get(0));
  if (value.length() > 1) fits = (issigned(value) ? unsignedpart(value) : value).isinteger();
  return fits ? ZmString() : notinteger(argument);
}

ZmString valueerror(int kind, const ZmString& argument, const ZmString& value) {
  if (kind == kInteger) return integererror(argument, value);
  if (kind == kDifference) return differenceerror(argument, value);
  return ZmString();
}

}  // namespace

// First, so that they come first in every list that shows what there is.
ZmParam::ZmParam() {
  if (!defineFlag("help") || !defineFlag("version")) throw std::bad_alloc();
}

ZmParam::~ZmParam() { delete[] arguments_; }

// Defining tells by its result, as the push of a list does, and not by an exception.
unsigned char ZmParam::_define(int tag, const ZmString& name) {
  try {
    options_._push(new ZmOption(tag, name));
  } catch (const std::bad_alloc&) {
    return 0;
  }
  return 1;
}

unsigned char ZmParam::defineFlag(const ZmString& name) { return _define(kFlag, name); }
unsigned char ZmParam::defineStringOption(const ZmString& name) { return _define(kString, name); }
unsigned char ZmParam::defineIntegerOption(const ZmString& name) { return _define(kInteger, name); }
unsigned char ZmParam::defineDiffOption(const ZmString& name) { return _define(kDifference, name); }

unsigned char ZmParam::parse(int argc, char** argv) {
  if (argc > 0) name_ = argv[0];
  ZmStringList args;
  for (int i = 1; i < argc; ++i) args._push(new ZmString(argv[i]));
  return parse(args);
}

unsigned char ZmParam::parse(ZmStringList& args) {
  const int length = args.length();
  delete[] std::exchange(arguments_, new ZmString[static_cast<std::size_t>(length) + 1]);
  count_ = 0;
  int index = 0;
  // Options first: what stands behind the first other argument belongs to the caller, whatever it
  // looks like.
  while (index < length && isoption(*args.get(index)))
    if (!_option(args, index)) return 0;
  for (; index < length; ++index, ++count_) arguments_[count_] = *args.get(index);
  // Last: a wrong option is reported even when it stands behind "help".
  for (const auto& [name, show] : {std::pair("help", help_), std::pair("version", version_)}) {
    if (!_given(name)) continue;
    if (show) show();
    std::exit(0);
  }
  return 1;
}

// The option counts as given only once its value was accepted.
unsigned char ZmParam::_option(const ZmStringList& args, int& index) {
  const ZmString& argument = *args.get(index++);
  ZmOption* option = _choose(argument);
  if (!option) return 0;
  if (option->tag() != kFlag) {
    const ZmString* value = args.get(index++);
    if (!value) return _fail("ERROR: parameter '" + argument + "' missing input\n");
    const ZmString error = valueerror(option->tag(), argument, *value);
    if (error.length() > 0) return _fail(error);
    option->value(*value);
  }
  option->exists(1);
  return 1;
}

// Every option that matches does so with all of the key: a second one is a tie, unless the key is
// the name in full.
ZmOption* ZmParam::_choose(const ZmString& argument) {
  ZmTextCursor in(zm_view(argument));
  in.skip(kDash);
  const ZmString key = zm_string(in.rest());
  ZmOption* chosen = nullptr;
  int best = 0;
  int ties = 0;
  for (int i = 0; i < options_.length(); ++i) {
    ZmOption* option = options_.get(i);
    const int length = option->match(key);
    if (length == best) ++ties;
    const bool exact = option->name() == key;
    if (!exact && length <= best) continue;
    chosen = option;
    best = length;
    ties = 0;
    if (exact) break;
  }
  if (best == 0) _fail("ERROR: unknown option " + argument + "\n");
  if (best > 0 && ties > 0) _ambiguous(argument, key);
  return best > 0 && ties == 0 ? chosen : nullptr;
}

void ZmParam::_ambiguous(const ZmString& argument, const ZmString& key) {
  _fail("ERROR: ambiguous option '" + argument + "'\n\tcould be:\n");
  for (int i = 0; i < options_.length(); ++i) {
    const ZmOption& option = *options_.get(i);
    if (option.match(key) > 0) error_ += "\t\t-" + option.name() + "\n";
  }
}

unsigned char ZmParam::_fail(const ZmString& message) {
  error_ = message;
  return 0;
}

unsigned char ZmParam::get(const ZmString& name, unsigned char& flag) const {
  const ZmOption* option = find(name);
  if (!option) return 0;
  flag = option->exists();
  return 1;
}

unsigned char ZmParam::get(const ZmString& name, ZmString& v) const {
  const ZmOption* option = _given(name);
  if (!option) return 0;
  v = option->value();
  return 1;
}

unsigned char ZmParam::get(const ZmString& name, int& v) const {
  const ZmOption* option = _given(name);
  if (!option) return 0;
  v = option->value().integervalue();
  return 1;
}

// Without a sign the value is absolute, which "=" stands for.
unsigned char ZmParam::get(const ZmString& name, int& v, char& sign) const {
  const ZmOption* option = _given(name);
  if (!option || option->value().length() == 0) return 0;
  const ZmString& value = option->value();
  sign = issigned(value) ? value.get(0) : '=';
  v = (issigned(value) ? unsignedpart(value) : value).integervalue();
  return 1;
}

// Few options, looked for a few times a run: no index pays.
ZmOption* ZmParam::find(const ZmString& name) const {
  for (int i = 0; i < options_.length(); ++i)
    if (options_.get(i)->name() == name) return options_.get(i);
  return nullptr;
}

const ZmOption* ZmParam::_given(const ZmString& name) const {
  const ZmOption* option = find(name);
  return option && option->exists() ? option : nullptr;
}

// The program's name stands for what is not there: callers print it without asking first.
const ZmString& ZmParam::arg(int i) const { return i >= 0 && i < count_ ? arguments_[i] : name_; }

void ZmParam::displayHeader() const {
  std::cout << "help: " << name_ << " ";
  for (int i = 0; i < options_.length(); ++i) std::cout << "-" << options_.get(i)->name() << " ";
  std::cout << "\n";
}

void ZmParam::displayHelp() const {
  std::cout << "help: " << name_ << "\n";
  for (int i = 0; i < options_.length(); ++i) std::cout << "\t-" << options_.get(i)->name() << "\n";
}
