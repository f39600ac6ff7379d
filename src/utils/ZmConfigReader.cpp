#include "ZmConfigReader.h"

#include <algorithm>
#include <iostream>

#include "ZmConfigExpander.h"
#include "ZmRange.h"
#include "ZmStringList.h"
#include "ZmText.h"

// What takes a walk over the texts is found once here: an option may go to thousands of sections.
ZmConfigReader::Option::Option(std::string_view l, std::string_view v)
    : label(l),
      value(v),
      refers(zm_has_reference(v)),
      local(refers && zm_local_value({}, v) != v) {}

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

// Brackets nest, since names hold patterns. What stands in quotes or braces is a token as any other
// here, so a lone bracket in it counts. Only the names are put in lower case: the warning about a
// parent shows the header as it is written.
void ZmConfigReader::header() {
  ZmString name;
  const std::size_t at = token_.offset;
  advance();
  for (int depth = 0; more_ && !(token_.is(']') && depth == 0); advance()) {
    if (token_.is('[')) ++depth;
    if (token_.is(']')) --depth;
    zm_append(name, token_.text);
  }
  const bool closed = more_;
  if (more_) advance();
  flush();
  ZmStringList names;
  const ZmString pattern = lowercase_ ? name.tolower() : name;
  ZmRange::patternsplit(0, pattern, names);
  if (observer_) observer_->header({at, closed, zm_view(pattern), names});
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
    if (observer_) observer_->parent(token_, parent);
    if (parent) {
      inherit(*parent);
    } else if (!observer_) {
      std::cerr << "WARNING: " + std::string(header) + " missing parent " +
                       std::string(token_.text) + "... skipping.\n";
    }
  }
}

// Values are copied as they stand: what is set in the parent later does not reach its children.
void ZmConfigReader::inherit(const ZmConfig& parent) {
  std::vector<Option> options;
  options.reserve(static_cast<std::size_t>(parent.length()));
  for (int i = 0; i < parent.length(); ++i) {
    options.emplace_back(zm_view(parent.label(i)), zm_view(parent.value(i)));
    options.back().local = false;  // they name the parent since it was given them
    options.back().parent = &parent;
    options.back().number = static_cast<std::size_t>(i);
  }
  spread(options, &parent);
}

// A name, or a section and a name behind a dot, then "=" and a value. The name behind a dot is one
// token, and a quote there is taken for the name itself. Where the text ends behind the "=" nothing
// is stored.
// False when the line is no option: the file ends there.
bool ZmConfigReader::option() {
  std::string longer_label;
  std::string longer_value;
  const std::size_t at = token_.offset;
  std::size_t label_at = at;
  std::string_view label = name(longer_label);
  if (!more_) return stop(at, label, false);
  const bool qualified = token_.is('.');
  const std::string_view qualifier = label;
  if (qualified) {
    advance();
    if (!more_) return stop(at, qualifier, false);
    label = token_.text;
    label_at = token_.offset;
    advance();
  }
  if (!more_ || !token_.is('=')) return stop(at, label, false);
  advance();
  if (!more_) return stop(at, label, true);
  const std::size_t value_at = token_.offset;
  Option option(label, joined(token_.is('"'), longer_value));
  if (observer_) [[unlikely]] {
    const std::size_t qualifier_at = qualified ? at : ZmConfigLine::kNone;
    option.number =
        observer_->option({label_at, qualifier_at, value_at, label, qualifier, option.value});
  }
  if (qualified) {
    flush();
    store(section(zm_string(qualifier)), option);
  } else {
    if (!headed_ && current_.empty()) current_.push_back(section(default_section_));
    if (current_.size() == 1) {
      store(current_.front(), option);
    } else {
      if (waiting_.empty()) waiting_from_ = option.number;
      waiting_.emplace_back(option.label.text, option.value);
    }
  }
  return true;
}

bool ZmConfigReader::stop(std::size_t at, std::string_view name, bool equals) {
  if (observer_) observer_->stop({at, name, equals});
  return false;
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

// Called before anything else may look at the current sections or change them: a header whose
// parents they may be, a qualified option, the end.
void ZmConfigReader::flush() {
  std::vector<Option> options;
  std::size_t number = waiting_from_;
  for (const auto& [label, value] : waiting_) {
    options.emplace_back(label, value);
    options.back().number = number++;
  }
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

// "self" and "this" get their meaning here, when an option is stored, and not when it is expanded:
// children that copy the option later still mean the section that it was written for. A position is
// noted only where it is sure to be this option's; a label that was known has one that is not told.
void ZmConfigReader::store(const Target& target, const Option& option) {
  ZmConfig& config = *target.config;
  int label = -1;
  if (option.local) {
    const std::string_view name = target.created == kNone ? known(config) : zm_view(config.name());
    label = config.option(option.label, zm_local_value(name, option.value));
  } else {
    label = config.option(option.label, option.value);
  }
  if (observer_) [[unlikely]]
    told(target, label, option);
  if (!option.refers) return;
  if (target.created == kNone || label < 0) {
    mixed_.insert(&config);
  } else {
    referring_.push_back({target.created, label});
  }
}

void ZmConfigReader::told(const Target& target, int label, const Option& option) {
  const ZmConfig& config = *target.config;
  if (label < 0) label = config.position(option.label.text);
  observer_->stored(config, label, option.parent, option.number);
}

// The section of this name, made when there is none.
ZmConfigReader::Target ZmConfigReader::section(const ZmString& name) {
  if (ZmConfig* known = sections_.get(name)) {
    if (observer_) observer_->section(*known, false);
    return {known, kNone};
  }
  ZmOwned<ZmConfig> fresh(new ZmConfig);
  fresh->name(name);
  ZmConfig* made = fresh.get();
  sections_.set(std::move(fresh), ZmOwned<ZmString>(ZmString::_exact(name)));
  created_.push_back(made);
  if (observer_) observer_->section(*made, true);
  return {made, created_.size() - 1};
}

// The name under which the file knows a section, which a program may have renamed since.
std::string_view ZmConfigReader::known(const ZmConfig& section) const {
  const std::string_view own = zm_view(section.name());
  if (sections_.find(own) == &section) return own;
  for (int i = 0; i < sections_.length(); ++i)
    if (sections_.value(i) == &section) return zm_view(sections_.key(i));
  return {};
}

// Each section is expanded before those that were made earlier, which parents are: values refer to
// what others hold at that moment, so this order shows in the result and files rely on it.
// The sections from the last one made to the first, their options in label order.
void ZmConfigReader::expand() {
  ZmConfigExpander expander(sections_, observer_);
  if (!std::is_sorted(referring_.begin(), referring_.end()))
    std::sort(referring_.begin(), referring_.end());
  auto end = referring_.end();
  for (std::size_t i = created_.size(); i-- > 0;) {
    ZmConfig& config = *created_[i];
    auto begin = end;
    while (begin != referring_.begin() && std::prev(begin)->created == i) --begin;
    if (!mixed_.empty() && mixed_.contains(&config)) {
      for (int label = 0; label < config.length(); ++label) expand(expander, config, label);
    } else {
      for (auto at = begin; at != end; ++at) expand(expander, config, at->label);
    }
    end = begin;
  }
}

// The value is looked at again: a later line may have replaced the one with references.
void ZmConfigReader::expand(ZmConfigExpander& expander, ZmConfig& config, int label) {
  const ZmString& value = config.value(label);
  if (!zm_has_reference(zm_view(value))) return;
  if (observer_) [[unlikely]]
    observer_->expand(config, value);
  const std::string_view section = zm_view(config.name());
  const std::string_view result = expander.expand(section, section, zm_view(value), &value);
  if (observer_) [[unlikely]]
    observer_->expanded(config, value, result);
  config.value(label, result);
  expander.replaced(value);
}
