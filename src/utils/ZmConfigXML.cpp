// The XML form of sections.
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "ZmConfig.h"
#include "ZmText.h"

namespace {

constexpr char kName[] = "name", kAddress[] = "address", kLabels[] = "labels",
               kOptions[] = "options";

}  // namespace

// The options as one element whose items stand in label order.
class ZmConfig::Items : public ZmPack {
 public:
  explicit Items(ZmConfig& section) : section_(section) {}
  void encode() override {}
  void decode() override {}
  void encodeXML() override {
    for (int i = 0; i < section_.length(); ++i) _storeItem(&section_.label(i), section_.value(i));
  }
  // Replaces labels and options, unless there is nothing to replace them by.
  void decodeXML() override {
    bool cleared = false;
    for (int at = 0; ZmPackObj* item = _item(at);) {
      ZmOwned<ZmString> key = _takeKey(*item);
      ZmOwned<ZmString> value = _takeItem(*item, static_cast<ZmString*>(nullptr));
      if (!key || !value) continue;
      if (!std::exchange(cleared, true)) clear();
      const auto hash = ZmBaseHashTable::hash(zm_view(*key));
      const auto spot = section_.options_._table().locate(zm_view(*key), hash);
      section_._add(spot, hash, std::move(key), std::move(value));
    }
  }
  void clear() {
    section_.options_.clear();
    section_.labels_.reset();
  }

 private:
  ZmConfig& section_;
};

// Whether the labels are just the keys that lookups find, each once. Labels with a zero byte may be
// equal to keys that are not the same.
bool ZmConfig::_ordered() const {
  if (!labels_) return true;
  std::vector<const void*> found;
  std::vector<const void*> listed;
  options_._table().each_found([&found](const auto& entry) { found.push_back(entry.value); });
  for (int i = 0; i < length(); ++i) {
    if (zm_view(label(i)).find('\0') != std::string_view::npos) return false;
    listed.push_back(_valueat(i));
  }
  std::sort(found.begin(), found.end());
  std::sort(listed.begin(), listed.end());
  return found == listed;
}

// In most sections the options tell the label order as well. Labels stand beside them only where
// they don't.
void ZmConfig::encodeXML() {
  storeXML(kName, name_);
  storeXML(kAddress, address_);
  if (_ordered()) {
    Items options(*this);
    return storeXML(kOptions, options);
  }
  storeXML(kLabels, *labels_);
  storeXML(kOptions, options_);
}

void ZmConfig::decodeXML() {
  restoreXML(kName, name_);
  restoreXML(kAddress, address_);
  Items options(*this);
  // An element without items has nothing that would replace what is here, but says that there are
  // none.
  if (_insideXML(kOptions) == 0) options.clear();
  restoreXML(kOptions, options);
  // After the options, which reset the label order as they are replaced.
  ZmStringList labels;
  restoreXML(kLabels, labels);
  if (labels.length() > 0 || _insideXML(kLabels) == 0) labels_.reset(new ZmStringList(labels));
}
