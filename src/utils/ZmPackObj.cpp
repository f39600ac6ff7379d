#include "ZmPackObj.h"

#include <new>
#include <utility>
#include <vector>

#include "ZmPackObjHash.h"
#include "ZmPackObjList.h"
#include "ZmText.h"

namespace {

constexpr int kFew = 8;  // so few elements, or searches among many, go without an index

}  // namespace

ZmPackObj::~ZmPackObj() { _clear(); }

// Needs neither recursion nor memory: an element is gone into once it is off the list around it,
// which then has room to note the way back.
void ZmPackObj::_clear() {
  ZmPackObj* around = nullptr;
  for (ZmPackObj* at = this;;) {
    at->_forget();
    ZmPackObj* const element = at->inside_ ? at->inside_->pop() : nullptr;
    if (element && element->inside_) {
      at->inside_->push(std::exchange(around, at));
      at = element;
    } else if (element) {
      delete element;
    } else {
      delete std::exchange(at->inside_, nullptr);
      if (!around) return;
      delete std::exchange(at, around);
      around = at->inside_->pop();
    }
  }
}

void ZmPackObj::_forget() const {
  searches_ = 0;
  if (!index_) return;
  index_->release();
  delete std::exchange(index_, nullptr);
}

void ZmPackObj::copy(const ZmPackObj& other) {
  if (this == &other) return;
  ZmPackObj made;  // first: the other may stand inside this one
  std::vector<std::pair<const ZmPackObj*, ZmPackObj*>> open{{&other, &made}};
  while (!open.empty()) {
    const auto [from, to] = open.back();
    open.pop_back();
    to->name_ = from->name_;
    if (from->key_) to->key_ = std::make_unique<ZmString>(*from->key_);
    if (from->text_) to->text_ = std::make_unique<ZmString>(*from->text_);
    for (int i = 0; i < from->length(); ++i) {
      auto element = std::make_unique<ZmPackObj>();
      open.emplace_back(from->get(i), element.get());
      to->push(element.get());
      static_cast<void>(element.release());
    }
  }
  _clear();
  name_ = made.name_;
  key_ = std::move(made.key_);
  text_ = std::move(made.text_);
  std::swap(inside_, made.inside_);
}

// No list is made for the many elements that hold a text.
int ZmPackObj::length() const { return inside_ ? inside_->length() : 0; }
ZmPackObj* ZmPackObj::get(int i) const { return inside_ ? inside_->get(i) : nullptr; }

// From the end, here and for the index: of several elements of one name the last counts.
ZmPackObj* ZmPackObj::find(const ZmString& name) const {
  if (length() > kFew && ++searches_ > kFew) return _indexed(name);
  for (int i = length() - 1; i >= 0; --i)
    if (zm_view(get(i)->name()) == zm_view(name)) return get(i);
  return nullptr;
}

ZmPackObj* ZmPackObj::_indexed(const ZmString& name) const {
  if (!index_) {
    index_ = new ZmPackObjHash;
    for (int i = length() - 1; i >= 0; --i)
      if (!index_->get(get(i)->name())) index_->set(get(i), get(i)->name());
  }
  return index_->get(name);
}

void ZmPackObj::name(std::shared_ptr<const ZmString> name) { name_ = std::move(name); }
void ZmPackObj::key(std::unique_ptr<ZmString> key) { key_ = std::move(key); }
void ZmPackObj::text(std::unique_ptr<ZmString> text) { text_ = std::move(text); }
std::unique_ptr<ZmString> ZmPackObj::takekey() { return std::move(key_); }
std::unique_ptr<ZmString> ZmPackObj::taketext() { return std::move(text_); }

void ZmPackObj::push(ZmPackObj* element) {
  if (!element) return;
  _forget();  // the index lacks the new element
  if (!inside_) inside_ = new ZmPackObjList;
  inside_->_room();
  inside_->push(element);
  text_.reset();
}
