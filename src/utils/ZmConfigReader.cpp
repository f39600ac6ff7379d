#include "ZmConfigReader.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <numeric>

#include "ZmConfigExpander.h"
#include "ZmRange.h"
#include "ZmStringList.h"
#include "ZmText.h"

ZmConfigReader::Option::Option(std::string_view l, std::string_view v)
    : label(l),
      value(v),
      hash(ZmBaseHashTable::hash(l)),
      references(zm_has_reference(v)),
      local(references && zm_local_value({}, v) != v) {}

void ZmConfigReader::run() {
  advance();
  while (skiplines()) {
    if (token_.is('[')) {
      header();
    } else if (!option()) {
      break;
    }
  }
  flush();
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
  std::vector<Option> options;
  options.reserve(static_cast<std::size_t>(parent._count()));
  for (int i = 0; i < parent._count(); ++i) {
    options.emplace_back(zm_view(parent._labelat(i)), zm_view(parent._optionat(i)));
    options.back().local = false;  // they name the parent since it was given them
  }
  spread(options, &parent);
}

// False when the line is no option: the file ends there.
bool ZmConfigReader::option() {
  std::string longer_label;
  std::string longer_value;
  std::string_view label = name(longer_label);
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
  const Option option(label, joined(token_.is('"'), longer_value));
  if (qualified) {
    flush();
    store(section(zm_string(qualifier)), option);
  } else {
    if (!headed_ && current_.empty()) current_.push_back(section(default_section_));
    if (current_.size() == 1) {
      store(current_.front(), option);
    } else {
      waiting_.emplace_back(option.label, option.value);
    }
  }
  return true;
}

// The option name at hand, or the quoted one.
std::string_view ZmConfigReader::name(std::string& longer) {
  if (token_.is('"')) return joined(true, longer);
  const std::string_view word = token_.text;
  advance();
  return word;
}

// The tokens up to the closing quote, which is passed over, or from the one at hand, whatever it
// is, up to the end of the line. Several tokens come in `longer`.
std::string_view ZmConfigReader::joined(bool quoted, std::string& longer) {
  if (quoted) advance();
  const auto ends = [&] { return !more_ || (quoted ? token_.is('"') : token_.endsline()); };
  std::string_view text;
  if (!quoted || !ends()) {
    text = token_.text;
    advance();
  }
  if (!ends()) {
    longer = text;
    for (; !ends(); advance()) longer += token_.text;
    text = longer;
  }
  if (quoted && more_) advance();
  return text;
}

void ZmConfigReader::flush() {
  std::vector<Option> options;
  for (const auto& [label, value] : waiting_) options.emplace_back(label, value);
  spread(options, nullptr);
  waiting_.clear();
}

// Stores options in all current sections but the one that lends them. They go to one section after
// the other, not to all sections one after the other: with thousands of sections that keeps each of
// them in the cache, and its texts together in memory.
void ZmConfigReader::spread(const std::vector<Option>& options, const ZmConfig* lender) {
  if (options.empty()) return;
  for (const Target& target : current_) {
    if (target.config == lender) continue;
    for (const Option& option : options) store(target, option);
  }
}

void ZmConfigReader::store(const Target& target, const Option& option) {
  ZmConfig& config = *target.config;
  int label = -1;
  if (option.local) {
    label = config._store(option.label, option.hash, zm_local_value(target.name, option.value));
  } else {
    label = config._store(option.label, option.hash, option.value);
  }
  if (!option.references) return;
  if (target.created == kNone || label < 0) {
    mixed_.insert(&config);
  } else {
    std::size_t& last = created_[target.created].reference;
    references_.push_back({label, last});
    last = references_.size() - 1;
  }
}

// The section of this name, made when there is none.
ZmConfigReader::Target ZmConfigReader::section(const ZmString& name) {
  const ZmBaseHashTable::Hash hash = ZmBaseHashTable::hash(zm_view(name));
  if (ZmConfig* known = sections_._get(zm_view(name), hash))
    return {known, kNone, zm_view(*sections_._stored(zm_view(name), hash))};
  auto config = std::make_unique<ZmConfig>();
  config->name(name);
  ZmConfig* made = config.get();
  sections_._set(config.release(), ZmString::_exact(name), hash);
  created_.push_back({made});
  return {made, created_.size() - 1, zm_view(made->name())};
}

// The sections from the last one made to the first, their options in label order.
void ZmConfigReader::expand() {
  ZmConfigExpander expander(sections_);
  for (std::size_t i = created_.size(); i-- > 0;)
    for (const int label : positions(created_[i])) expand(expander, *created_[i].config, label);
}

// Where options with references may stand in the section.
std::vector<int> ZmConfigReader::positions(const Created& created) const {
  std::vector<int> labels;
  if (mixed_.contains(created.config)) {
    labels.resize(static_cast<std::size_t>(created.config->_count()));
    std::iota(labels.begin(), labels.end(), 0);
  } else {
    for (std::size_t at = created.reference; at != kNone; at = references_[at].before)
      labels.push_back(references_[at].label);
    std::reverse(labels.begin(), labels.end());
  }
  return labels;
}

void ZmConfigReader::expand(ZmConfigExpander& expander, ZmConfig& config, int label) {
  const ZmString& value = config._optionat(label);
  if (!zm_has_reference(zm_view(value))) return;
  const std::string_view section = zm_view(config.name());
  const std::string_view result = expander.expand(section, section, zm_view(value), &value);
  config._replace(label, result);
  expander.replaced(value);
}
