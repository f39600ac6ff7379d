#include "ZmConfig.h"

#include <iostream>
#include <memory>
#include <utility>

#include "ZmConfigOptionText.h"
#include "ZmHost.h"
#include "ZmText.h"

namespace {

enum Tag { kOptions = 0, kAddress = 1, kName = 2, kLabels = 3 };

// Writes the label order as the record of a list, so that none has to be made.
class LabelOrder : public ZmStringList {
 public:
  explicit LabelOrder(const ZmConfig& section) : section_(section) {}
  void encode() override {
    store(kCount, section_.length());
    for (int i = 0; i < section_.length(); ++i) store(kElement, section_.label(i));
  }

 private:
  const ZmConfig& section_;
};

}  // namespace

ZmConfig::ZmConfig(const ZmConfig& other) : ZmPack(other) { copy(other); }

// A copy of the options keeps the order of their setting. It needs a list only where the other
// section has one, or where the copy may hold entries that its lookups don't find.
void ZmConfig::copy(const ZmConfig& other) {
  if (this == &other) return;
  ZmOwned<ZmStringList> labels;
  if (other.labels_ || other.options_._table().anyremoved())
    labels.reset(new ZmStringList(other.optionlist()));
  address_ = other.address_;
  name_._fit(other.name_);
  labels_.reset();  // first: without it there are no labels but those of options
  options_ = other.options_;
  if (labels && labels->length() < 1) options_.copykeys(*labels);
  labels_ = std::move(labels);
}

// From here on the label order is kept apart from the options.
ZmStringList& ZmConfig::_list() {
  if (!labels_) labels_.reset(new ZmStringList(optionlist()));
  return *labels_;
}

void ZmConfig::labels(ZmStringList& list) const {
  if (labels_) return list.copy(*labels_);
  list.clear();
  for (int i = 0; i < length(); ++i) list._push(ZmString::_exact(label(i)));
}

ZmStringList ZmConfig::optionlist() const {
  ZmStringList list;
  labels(list);
  return list;
}

const ZmString& ZmConfig::option(const ZmString& label) const {
  const ZmString* value = options_.get(label);
  return value ? *value : zm_no_text();
}

// Null when the label order lists a label that the options lack, as a record may have it.
ZmString* ZmConfig::_valueat(int i) const {
  return labels_ ? options_.get(*labels_->get(i)) : options_.value(i);
}

const ZmString& ZmConfig::value(int i) const {
  const ZmString* value = _valueat(i);
  return value ? *value : zm_no_text();
}

void ZmConfig::value(int i, std::string_view value) {
  if (ZmString* stored = _valueat(i)) stored->_fit(value.data(), static_cast<int>(value.size()));
}

void ZmConfig::option(const ZmString& label, const ZmString& value) {
  option(ZmConfigLabel(zm_view(label)), zm_view(value), value.secure());
}

// One search serves both: where the label is and where a new one goes.
int ZmConfig::option(const ZmConfigLabel& label, std::string_view value, unsigned char secure) {
  const ZmBaseHashTable& table = options_._table();
  const ZmBaseHashTable::Spot spot = table.locate(label.text, label.hash);
  const auto length = static_cast<int>(value.size());
  if (spot.found >= 0 && spot.found == spot.place) {
    // Written over where it stands, as if it were replaced: an empty one is undefined, as a new
    // one. But a secure text has to be wiped, and an equal label with other bytes behind a zero
    // byte takes the place of the old one.
    auto* stored = static_cast<ZmString*>(table.value(spot.found));
    if (stored && !stored->secure() && !ZmBaseHashTable::haszero(label.hash)) {
      if (length > 0) {
        stored->_fit(value.data(), length);
      } else {
        std::destroy_at(stored);
        std::construct_at(stored);
      }
      stored->secure(secure);
      return -1;
    }
  }
  ZmOwned<ZmString> text(ZmString::_exact(value.data(), length));
  text->secure(secure);
  ZmOwned<ZmString> key(ZmString::_exact(label.text.data(), static_cast<int>(label.text.size())));
  return _add(spot, label.hash, std::move(key), std::move(text));
}

// All memory but that of tables is taken before the option is stored: a section never lists a label
// that it lacks, and what throws before leaves it as it was.
int ZmConfig::_add(const ZmBaseHashTable::Spot& spot, ZmBaseHashTable::Hash hash,
                   ZmOwned<ZmString> key, ZmOwned<ZmString> value) {
  const bool hidden = spot.found >= 0 && spot.found != spot.place;
  if (hidden || ZmBaseHashTable::haszero(hash)) _list();
  ZmOwned<ZmString> listed(spot.known() || !labels_ ? nullptr : ZmString::_exact(*key));
  if (!options_._table().fill(spot, value.get(), key.get(), hash))
    options_.set(value.get(), key.get());
  value.release();
  key.release();
  if (listed) labels_->_push(listed.release());
  return spot.known() ? -1 : length() - 1;
}

const ZmString* ZmConfig::find(std::string_view label) const { return options_.find(label); }

int ZmConfig::position(std::string_view label) const {
  if (labels_) return labels_->find(zm_string(label));
  const ZmBaseHashTable& table = options_._table();
  if (table.entries() == 0) return -1;
  const ZmBaseHashTable::Entry* first = &table.entry(0);  // entries don't move from here on
  const ZmBaseHashTable::Entry* held = table.find(label, ZmBaseHashTable::hash(label));
  return held ? static_cast<int>(held - first) : -1;
}

unsigned char ZmConfig::exists(const ZmString& label) const {
  return options_.get(label) != nullptr;
}

unsigned char ZmConfig::remove(const ZmString& label) {
  const ZmOwned<ZmString> value(options_.remove(label));
  if (!value || !labels_)
    return value.get() != nullptr;  // without a list the label may have gone, too
  const ZmOwned<ZmString> listed(labels_->remove(labels_->find(label)));
  return listed.get() != nullptr;
}

void ZmConfig::inherit(const ZmConfig& other) {
  for (int i = 0; i < other.length(); ++i) option(other.label(i), other.value(i));
}

unsigned char ZmConfig::matchsubset(const ZmConfig& other) const {
  for (int i = 0; i < other.length(); ++i)
    if (other.value(i) != option(other.label(i))) return 0;
  return 1;
}

ZmString ZmConfig::host() const { return zm_hostname(); }

ZmString ZmConfig::convert() const {
  ZmString text;
  for (int i = 0; i < length(); ++i) zm_append_option(text, label(i), value(i));
  return text;
}

void ZmConfig::display() const {
  std::cout << "items: " << length() << '\n';
  for (int i = 0; i < length(); ++i) std::cout << i << ": " << label(i) << '=' << value(i) << '\n';
}

// The order of the fields is part of the format, though readers take them in any.
void ZmConfig::encode() {
  LabelOrder labels(*this);
  store(kAddress, address_);
  store(kLabels, labels);
  store(kOptions, options_);
  store(kName, name_);
}

void ZmConfig::decode() {
  // A record holds labels and options apart, and nothing makes them agree.
  ZmStringList& list = _list();
  // Lists and hashes add what a record holds: only an empty one is replaced by it.
  if (_offers(kLabels, list)) list.clear();
  if (_offers(kOptions, options_)) options_.clear();
  restore(kAddress, address_);
  restore(kLabels, list);
  restore(kOptions, options_);
  restore(kName, name_);
}

int _zm_config_cmp(const ZmString* a, const ZmString* b) {
  if (*a > *b) return 1;
  return *a < *b ? -1 : 0;
}

int zm_config_sort_func(const ZmString* a, const ZmString* b) { return _zm_config_cmp(a, b); }
