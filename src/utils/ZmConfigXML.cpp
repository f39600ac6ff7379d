// The XML form of sections.
#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "ZmConfig.h"
#include "ZmPackObj.h"
#include "ZmText.h"

namespace {

constexpr char kName[] = "name", kAddress[] = "address", kLabels[] = "labels",
               kOptions[] = "options";

using Values = std::vector<const ZmString*>;

// The options as one element whose items stand in label order.
class Ordered : public ZmPack {
 public:
  Ordered(ZmStringList& labels, ZmStringHash& options, const Values& values = {})
      : labels_(labels), options_(options), values_(values) {}
  void encode() override {}
  void decode() override {}
  void encodeXML() override {
    for (int i = 0; i < labels_.length(); ++i)
      _storeItem(labels_.get(i), *values_[static_cast<std::size_t>(i)]);
  }
  // Replaces both, unless there is nothing to replace them by.
  void decodeXML() override {
    bool cleared = false;
    for (int at = 0; ZmPackObj* item = _item(at);) {
      if (!item->key() || !item->text()) continue;
      if (!cleared) clear();
      cleared = true;
      _add(item->takekey(), item->taketext());
    }
  }
  void clear() {
    labels_.clear();
    options_.clear();
  }

 private:
  void _add(std::unique_ptr<ZmString> key, std::unique_ptr<ZmString> value) {
    std::unique_ptr<ZmString> label(ZmString::_exact(key->value(), key->length()));
    const auto hash = ZmSlotTable::hash(zm_view(*label));
    ZmSlotTable& table = options_._table();
    if (table.fill(table.locate(zm_view(*key), hash), value.get(), key.get(), hash)) {
      labels_.push(label.release());
    } else {
      if (!options_._get(zm_view(*label), hash)) labels_.push(label.release());
      options_._set(value.get(), key.get(), hash);
    }
    value.release();
    key.release();
  }

  ZmStringList& labels_;
  ZmStringHash& options_;
  const Values values_;  // in label order
};

bool distinct(Values values) {
  std::ranges::sort(values);
  return std::ranges::adjacent_find(values) == values.end();
}

// Finds the values in label order. False unless the labels are just the keys of the options, each
// once: remove(), copies made after it, and records can make other sections. Labels with a zero
// byte may be equal to keys that are not the same.
bool ordered(const ZmStringList& labels, const ZmStringHash& options, Values& values) {
  int keys = 0;
  options._table().each([&keys](const ZmString*, const void*) { ++keys; });
  if (labels.length() != keys) return false;
  for (int i = 0; i < keys; ++i) {
    const ZmString& label = *labels.get(i);
    values.push_back(options.get(label));
    if (!values.back() || zm_view(label).find('\0') != std::string_view::npos) return false;
  }
  return distinct(values);
}

}  // namespace

void ZmConfig::encodeXML() {
  storeXML(kName, name_);
  storeXML(kAddress, address_);
  if (Values values; ordered(labels_, options_, values)) {
    Ordered options(labels_, options_, values);
    return storeXML(kOptions, options);
  }
  storeXML(kLabels, labels_);
  storeXML(kOptions, options_);
}

void ZmConfig::decodeXML() {
  values_.release();
  restoreXML(kName, name_);
  restoreXML(kAddress, address_);
  Ordered options(labels_, options_);
  if (_insideXML(kOptions) == 0) options.clear();
  restoreXML(kOptions, options);
  ZmStringList labels;
  restoreXML(kLabels, labels);
  if (labels.length() > 0 || _insideXML(kLabels) == 0) labels_ = labels;
}
