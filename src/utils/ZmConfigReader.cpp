#include "ZmConfigReader.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "ZmExpander.h"
#include "ZmRange.h"
#include "ZmStringList.h"
#include "ZmText.h"

namespace {

bool hasreference(std::string_view value) { return value.find('$') != std::string_view::npos; }

}  // namespace

std::string zm_local_value(std::string_view section, std::string_view value) {
  std::string local;
  for (ZmCursor in(value); !in.eof();) {
    const std::string_view word = zm_value_word(in);
    local += word;
    if (word != "$") continue;
    if (in.accept('{')) local += '{';
    const std::string_view name = zm_value_word(in);
    local += name == "self" || name == "this" ? section : name;
  }
  return local;
}

ZmConfigReader::ZmConfigReader(ZmConfigHash& sections, const ZmString& default_section,
                               bool lowercase, std::string_view text)
    : sections_(sections),
      default_section_(default_section),
      lowercase_(lowercase),
      scanner_(text) {
  waiting_.reserve(64);
}

void ZmConfigReader::run() {
  advance();
  while (skiplines()) {
    if (token_.is('[')) {
      header();
    } else if (!option()) {
      break;
    }
  }
  expand();
}

// False once the tokens are used up.
bool ZmConfigReader::skiplines() {
  while (more_ && token_.endsline()) advance();
  return more_;
}

void ZmConfigReader::header() {
  ZmString name;
  advance();
  for (int depth = 0; more_ && !(token_.is(']') && depth == 0); advance()) {
    if (token_.is('[')) ++depth;
    if (token_.is(']')) --depth;
    zm_append(name, token_.text);
  }
  if (more_) advance();
  flush();
  ZmStringList names;
  ZmRange::patternsplit(0, lowercase_ ? name.tolower() : name, names);
  headed_ = true;
  current_.clear();
  current_.reserve(static_cast<std::size_t>(names.length()));
  for (int i = 0; i < names.length(); ++i) current_.push_back(section(*names.get(i)));
  if (more_ && token_.is(':')) {
    advance();
    parents(zm_view(name));
  }
}

void ZmConfigReader::parents(std::string_view header) {
  for (; more_ && !token_.endsline(); advance()) {
    const ZmString written = zm_string(token_.text);
    const ZmConfig* parent = sections_.get(lowercase_ ? written.tolower() : written);
    if (parent) {
      inherit(*parent);
    } else {
      std::cerr << "WARNING: " + std::string(header) + " missing parent " +
                       std::string(token_.text) + "... skipping.\n";
    }
  }
}

// Values are copied as they stand: what is set in the parent later does not reach its children.
void ZmConfigReader::inherit(const ZmConfig& parent) {
  flush();  // what waits may be for the parent
  const bool own = std::any_of(current_.begin(), current_.end(), [&parent](const Target& target) {
    return target.config == &parent;
  });
  for (int i = 0; i < parent._count(); ++i) {
    const ZmString& label = parent._labelat(i);
    const std::string_view value = zm_view(parent._optionat(i));
    // Of its own options a section keeps the texts, which it would destroy while storing them.
    waiting_.push_back({own ? kept(std::string(zm_view(label))) : zm_view(label),
                        own ? kept(std::string(value)) : value, ZmSlotTable::hash(zm_view(label)),
                        hasreference(value), false});
  }
  flush();
}

// False when the line is no option: the file ends there.
bool ZmConfigReader::option() {
  if (waiting_.empty()) texts_.clear();
  std::string_view label = name();
  if (!more_) return false;
  const bool qualified = token_.is('.');
  const std::string_view qualifier = label;
  if (qualified) {
    advance();
    if (!more_) return false;
    label = token_.text;
    advance();
  }
  if (!more_ || !token_.is('=')) return false;
  advance();
  if (!more_) return false;
  const std::string_view value = joined(token_.is('"'));
  const bool references = hasreference(value);
  const Option option{label, value, ZmSlotTable::hash(label), references,
                      references && zm_local_value({}, value) != value};
  if (qualified) {
    flush();
    store(section(zm_string(qualifier)), option);
  } else {
    if (!headed_ && current_.empty()) current_.push_back(section(default_section_));
    waiting_.push_back(option);
    if (waiting_.size() == kWaiting) flush();
  }
  return true;
}

// The option name at hand, or the quoted one.
std::string_view ZmConfigReader::name() {
  if (token_.is('"')) return joined(true);
  const std::string_view word = token_.text;
  advance();
  return word;
}

// The tokens up to the closing quote, which is passed over, or from the one at hand, whatever it
// is, up to the end of the line.
std::string_view ZmConfigReader::joined(bool quoted) {
  if (quoted) advance();
  const auto ends = [&] { return !more_ || (quoted ? token_.is('"') : token_.endsline()); };
  std::string_view text;
  if (!quoted || !ends()) {
    text = token_.text;
    advance();
  }
  if (!ends()) {
    std::string longer(text);
    for (; !ends(); advance()) longer += token_.text;
    text = kept(std::move(longer));
  }
  if (quoted && more_) advance();
  return text;
}

void ZmConfigReader::flush() {
  for (const Target& target : current_)
    for (const Option& option : waiting_) store(target, option);
  waiting_.clear();
}

void ZmConfigReader::store(const Target& target, const Option& option) {
  ZmConfig& config = *target.config;
  int label = -1;
  if (option.local) {
    const std::string value = zm_local_value(zm_view(config.name()), option.value);
    label = config._store(option.label, option.hash, value);
  } else {
    label = config._store(option.label, option.hash, option.value);
  }
  if (!option.references) return;
  if (target.created == kOld) {
    reopened_.insert(&config);
  } else {
    references_.push_back({target.created, label});
  }
}

// The section of this name, made when there is none.
ZmConfigReader::Target ZmConfigReader::section(const ZmString& name) {
  const ZmSlotTable::Hash hash = ZmSlotTable::hash(zm_view(name));
  if (ZmConfig* known = sections_._get(zm_view(name), hash)) return {known, kOld};
  auto config = std::make_unique<ZmConfig>();
  config->name(name);
  ZmConfig* made = config.get();
  sections_._set(config.release(), ZmString::_exact(name), hash);
  created_.push_back(made);
  return {made, created_.size() - 1};
}

// The sections from the last one made to the first, their options in label order.
void ZmConfigReader::expand() {
  flush();
  ZmExpander expander(sections_);
  if (!std::is_sorted(references_.begin(), references_.end()))
    std::sort(references_.begin(), references_.end());
  auto end = references_.end();
  for (std::size_t i = created_.size(); i-- > 0;) {
    ZmConfig& config = *created_[i];
    auto begin = end;
    while (begin != references_.begin() && std::prev(begin)->created == i) --begin;
    const bool all = reopened_.contains(&config) || (begin != end && begin->label < 0);
    if (all) {
      for (int n = 0; n < config._count(); ++n) expand(expander, config, n);
    } else {
      for (auto at = begin; at != end; ++at) expand(expander, config, at->label);
    }
    end = begin;
  }
}

void ZmConfigReader::expand(ZmExpander& expander, ZmConfig& config, int label) {
  const ZmString& value = config._optionat(label);
  if (!hasreference(zm_view(value))) return;
  const std::string_view section = zm_view(config.name());
  const std::string_view result = expander.expand(section, section, zm_view(value), &value);
  config._replace(label, result);
  expander.replaced();
}
