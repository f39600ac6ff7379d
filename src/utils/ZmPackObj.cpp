#include "ZmPackObj.h"

#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "ZmBaseHash.h"
#include "ZmBaseList.h"
#include "ZmText.h"

namespace {

constexpr int kFew = 8;  // so few elements, or searches among many, go without an index

}  // namespace

// Elements, and what find() has made for them. Most elements hold a text and have none of it.
struct ZmPackObj::Inside : ZmBaseList<ZmPackObj> {
  ZmBaseHash<ZmPackObj>* index = nullptr;  // by name, lends them; made when it pays
  int searches = 0;                        // since an element came or went
};

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
  if (!inside_) return;
  inside_->searches = 0;
  if (!inside_->index) return;
  inside_->index->release();
  delete std::exchange(inside_->index, nullptr);
}

// With a list of what is still to be copied, since the depth of a tree is up to whoever made it.
void ZmPackObj::copy(const ZmPackObj& other) {
  if (this == &other) return;
  ZmPackObj made;  // first: the other may stand inside this one
  std::vector<std::pair<const ZmPackObj*, ZmPackObj*>> open{{&other, &made}};
  while (!open.empty()) {
    const auto [from, to] = open.back();
    open.pop_back();
    to->name_._fit(from->name_);
    if (from->key_) to->key_.reset(new ZmString(*from->key_));
    if (from->text_) to->text_.reset(new ZmString(*from->text_));
    for (int i = 0; i < from->length(); ++i) {
      auto element = std::make_unique<ZmPackObj>();
      open.emplace_back(from->get(i), element.get());
      to->push(element.get());
      static_cast<void>(element.release());
    }
  }
  // Nothing fails from here on.
  _clear();
  name_._swap(made.name_);
  key_ = std::move(made.key_);
  text_ = std::move(made.text_);
  std::swap(inside_, made.inside_);
}

// No list is made for the many elements that hold a text.
int ZmPackObj::length() const { return inside_ ? inside_->length() : 0; }
ZmPackObj* ZmPackObj::get(int i) const { return inside_ ? inside_->get(i) : nullptr; }

// From the end, here and for the index: of several elements of one name the last counts.
ZmPackObj* ZmPackObj::find(const ZmString& name) const {
  if (length() > kFew && ++inside_->searches > kFew) return _indexed(name);
  for (int i = length() - 1; i >= 0; --i)
    if (zm_view(get(i)->name()) == zm_view(name)) return get(i);
  return nullptr;
}

// Members are asked for one by one: searching all elements for each would be quadratic.
ZmPackObj* ZmPackObj::_indexed(const ZmString& name) const {
  auto*& index = inside_->index;
  if (!index) {
    index = new ZmBaseHash<ZmPackObj>;
    for (int i = length() - 1; i >= 0; --i)
      if (!index->get(get(i)->name())) index->set(get(i), get(i)->name());
  }
  return index->get(name);
}

void ZmPackObj::name(const ZmString& name) { name_._fit(name); }
void ZmPackObj::key(ZmOwned<ZmString> key) { key_ = std::move(key); }
void ZmPackObj::text(ZmOwned<ZmString> text) { text_ = std::move(text); }
ZmOwned<ZmString> ZmPackObj::takekey() { return std::move(key_); }
ZmOwned<ZmString> ZmPackObj::taketext() { return std::move(text_); }

// The room is made first: a push that finds none would lose the elements held so far.
void ZmPackObj::push(ZmPackObj* element) {
  if (!element) return;
  _forget();  // the index lacks the new element
  if (!inside_) inside_ = new Inside;
  inside_->_room();
  inside_->push(element);
  text_.reset();
}
