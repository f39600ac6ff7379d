#include "ZmConfig.h"

#include <iostream>
#include <memory>

#include "ZmHost.h"
#include "ZmSectionValue.h"
#include "ZmText.h"

namespace {

enum Tag { kOptions = 0, kAddress = 1, kName = 2, kLabels = 3 };

}  // namespace

ZmConfig::ZmConfig(const ZmConfig& other) : ZmPack(other) { copy(other); }

void ZmConfig::copy(const ZmConfig& other) {
  if (this == &other) return;
  values_.release();
  address_ = other.address_;
  name_ = other.name_;
  options_ = other.options_;
  if (other.labels_.length() < 1) {
    options_.copykeys(labels_);
  } else {
    labels_ = other.labels_;
  }
}

const ZmString& ZmConfig::option(const ZmString& label) const {
  const ZmString* value = options_.get(label);
  return value ? *value : empty_;
}

// Null when the label order lists a label that the options lack, as a record may have it.
ZmString* ZmConfig::_valueat(int i) const {
  if (values_.length() != labels_.length()) return options_.get(*labels_.get(i));
  return static_cast<ZmString*>(values_.get(i));
}

const ZmString& ZmConfig::_optionat(int i) const {
  const ZmString* value = _valueat(i);
  return value ? *value : empty_;
}

void ZmConfig::_replace(int i, std::string_view value) {
  if (ZmString* stored = _valueat(i)) zm_assign(*stored, value);
}

void ZmConfig::option(const ZmString& label, const ZmString& value) {
  _place(
      zm_view(label), ZmSlotTable::hash(zm_view(label)), [&] { return new ZmString(value); },
      [&](ZmString& stored) {
        if (value.isundef()) return false;  // an assignment leaves a text defined
        stored = value;
        return true;
      });
}

int ZmConfig::_store(std::string_view label, ZmSlotTable::Hash hash, std::string_view value) {
  const auto count = static_cast<int>(value.size());
  return _place(
      label, hash, [&] { return ZmString::_exact(value.data(), count); },
      [&](ZmString& stored) {
        zm_assign(stored, value);
        return true;
      });
}

template <class Make, class Assign>
int ZmConfig::_place(std::string_view label, ZmSlotTable::Hash hash, Make make, Assign assign) {
  ZmSlotTable& table = options_._table();
  const ZmSlotTable::Spot spot = table.locate(label, hash);
  const auto count = static_cast<int>(label.size());
  if (spot.found >= 0 && spot.found == spot.place) {
    // Written over where it stands, as if it were replaced. But a secure text has to be wiped, and
    // an equal label with other bytes behind a zero byte takes the place of the old one.
    auto* stored = static_cast<ZmString*>(table.value(spot.found));
    const bool plain = stored && !stored->secure() && label.find('\0') == label.npos;
    if (plain && assign(*stored)) return -1;
  }
  const bool known = spot.found >= 0 || options_._get(label, hash) != nullptr;
  ZmString* value = make();
  auto* listed = known ? nullptr : ZmString::_exact(label.data(), count);
  auto* key = ZmString::_exact(label.data(), count);
  if (!table.fill(spot, value, key, hash)) options_._set(value, key, hash);
  if (listed) labels_.push(listed);
  // A growth of the table may drop one of two labels that differ behind a zero byte only.
  if (listed && values_.length() + 1 == labels_.length() && table.entries() == labels_.length()) {
    values_.push(value);
  } else {
    values_.release();
  }
  return listed ? labels_.length() - 1 : -1;
}

const ZmString* ZmConfig::_find(std::string_view label) const {
  return options_._get(label, ZmSlotTable::hash(label));
}

unsigned char ZmConfig::exists(const ZmString& label) const {
  return options_.get(label) != nullptr;
}

unsigned char ZmConfig::remove(const ZmString& label) {
  const std::unique_ptr<ZmString> value(options_.remove(label));
  if (!value) return 0;
  values_.release();
  const std::unique_ptr<ZmString> listed(labels_.remove(labels_.find(label)));
  return listed != nullptr;
}

void ZmConfig::inherit(const ZmConfig& other) {
  for (int i = 0; i < other.labels_.length(); ++i) {
    const ZmString& label = *other.labels_.get(i);
    option(label, other.option(label));
  }
}

unsigned char ZmConfig::matchsubset(const ZmConfig& other) const {
  for (int i = 0; i < other.labels_.length(); ++i)
    if (other._optionat(i) != option(*other.labels_.get(i))) return 0;
  return 1;
}

ZmString ZmConfig::host() const { return zm_hostname(); }

ZmString ZmConfig::convert() const {
  ZmString text;
  for (int i = 0; i < labels_.length(); ++i) zm_append_option(text, *labels_.get(i), _optionat(i));
  return text;
}

void ZmConfig::display() const {
  std::cout << "items: " << labels_.length() << '\n';
  for (int i = 0; i < labels_.length(); ++i)
    std::cout << i << ": " << *labels_.get(i) << '=' << _optionat(i) << '\n';
}

void ZmConfig::encode() {
  store(kAddress, address_);
  store(kLabels, labels_);
  store(kOptions, options_);
  store(kName, name_);
}

void ZmConfig::decode() {
  values_.release();
  if (_offers(kLabels, labels_)) labels_.clear();
  if (_offers(kOptions, options_)) options_.clear();
  restore(kAddress, address_);
  restore(kLabels, labels_);
  restore(kOptions, options_);
  restore(kName, name_);
}

int _zm_config_cmp(const ZmString* a, const ZmString* b) {
  if (*a > *b) return 1;
  return *a < *b ? -1 : 0;
}

int zm_config_sort_func(const ZmString* a, const ZmString* b) { return _zm_config_cmp(a, b); }
