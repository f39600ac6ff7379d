#include "ZmPackXMLReader.h"

#include <expat.h>

#include <climits>
#include <cstring>
#include <new>
#include <utility>

#include "ZmPack.h"
#include "ZmPackXMLText.h"
#include "ZmText.h"

namespace {

using Parser = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

// After a stop Expat still calls handlers for what it has in hand.
template <class Handle>
void guarded(void* user, Handle handle) noexcept {
  auto& reader = *static_cast<ZmPackXMLReader*>(user);
  if (reader.stopped()) return;
  try {
    handle(reader);
  } catch (const std::bad_alloc&) {
    reader.stop(ZmPackXMLReader::kNoMemory);
  }
}

// Called where "<!DOCTYPE name" ends, before any declaration inside it is read.
// Entities declared there could blow a short text up to gigabytes, and records need none.
void refuse(void* user, const XML_Char*, const XML_Char*, const XML_Char*, int) noexcept {
  guarded(user, [](ZmPackXMLReader& reader) { reader.stop(ZmPackXMLReader::kRefused); });
}

// The attributes that mean something here; null when absent.
struct Attributes {
  explicit Attributes(const char** list) {
    for (; *list; list += 2)
      if (const char** value = find(*list)) *value = list[1];
  }
  const char** find(const char* attribute) {
    const auto is = [attribute](const char* one) { return std::strcmp(attribute, one) == 0; };
    if (is("key")) return &key;
    if (is("encoding")) return &encoding;
    if (is("key-encoding")) return &key_encoding;
    if (is("name")) return &name;
    return is("name-encoding") ? &name_encoding : nullptr;
  }

  const char* encoding = nullptr;
  const char* key = nullptr;
  const char* key_encoding = nullptr;
  const char* name = nullptr;
  const char* name_encoding = nullptr;
};

int size(std::string_view text) { return static_cast<int>(text.size()); }

}  // namespace

void ZmPackStartElement(void* reader, const char* name, const char** attributes) noexcept {
  guarded(reader, [=](ZmPackXMLReader& to) { to.enter(name, attributes); });
}

void ZmPackEndElement(void* reader, const char*) noexcept {
  guarded(reader, [](ZmPackXMLReader& to) { to.leave(); });
}

void ZmPackData(void* reader, const char* text, int length) noexcept {
  guarded(reader, [=](ZmPackXMLReader& to) { to.data({text, static_cast<std::size_t>(length)}); });
}

ZmPackXMLReader::Result ZmPackXMLReader::read(std::string_view text) {
  if (text.size() > INT_MAX) return kBroken;
  const Parser parser(XML_ParserCreate(nullptr), XML_ParserFree);
  if (!parser) throw std::bad_alloc();
  parser_ = parser.get();
  XML_SetUserData(parser_, this);
  XML_SetElementHandler(parser_, ZmPackStartElement, ZmPackEndElement);
  XML_SetStartDoctypeDeclHandler(parser_, refuse);
  const bool well_formed = XML_Parse(parser_, text.data(), size(text), 1) == XML_STATUS_OK;
  if (XML_GetErrorCode(parser_) == XML_ERROR_NO_MEMORY) result_ = kNoMemory;
  parser_ = nullptr;
  if (result_ == kNoMemory) throw std::bad_alloc();  // here, outside the frames of Expat
  return result_ == kDone && !well_formed ? kBroken : result_;
}

void ZmPackXMLReader::stop(Result why) {
  result_ = why;
  XML_StopParser(parser_, XML_FALSE);
}

// A text in an encoding that is unknown here must not be taken for a plain one.
ZmPackXMLReader::Encoding ZmPackXMLReader::encoding(const char* name) {
  if (!name) return kPlain;
  return std::string_view(name) == "base64" ? kBase64 : kUnknown;
}

ZmOwned<ZmString> ZmPackXMLReader::decoded(std::string_view value, Encoding encoding) {
  if (encoding == kUnknown) return {};
  if (encoding == kPlain) return ZmOwned<ZmString>(ZmString::_exact(value.data(), size(value)));
  ZmOwned<ZmString> bytes(new ZmString);
  return zm_from_base64(value, *bytes) ? std::move(bytes) : ZmOwned<ZmString>();
}

// Text beside elements, the indentation above all, is not worth a call.
void ZmPackXMLReader::listen(bool on) {
  leaf_ = on;
  text_.reset();
  XML_SetCharacterDataHandler(parser_, on ? ZmPackData : nullptr);
}

void ZmPackXMLReader::enter(const char* name, const char** attributes) {
  if (open_.size() >= kDepth) return stop(kRefused);
  auto made = std::make_unique<ZmPackObj>();
  ZmPackObj* element = made.get();
  if (open_.empty()) {
    root_ = std::move(made);
  } else {
    open_.back()->push(element);  // owns it now; open_ lends
    static_cast<void>(made.release());
  }
  open_.push_back(element);
  listen(true);

  const Attributes given(attributes);
  encoding_ = encoding(given.encoding);
  if (given.key) element->key(decoded(given.key, encoding(given.key_encoding)));
  if (given.name && std::strcmp(name, "element") == 0) {
    if (const auto odd = decoded(given.name, encoding(given.name_encoding))) element->name(*odd);
  } else {
    name_ = name;
    element->name(name_);
  }
}

void ZmPackXMLReader::data(std::string_view text) {
  if (text_) {
    zm_append(*text_, text);
  } else {
    text_ = decoded(text, kPlain);
  }
}

// Only an element without others inside has a text, and that of a leaf is never null.
void ZmPackXMLReader::leave() {
  ZmPackObj& element = *open_.back();
  open_.pop_back();
  if (!leaf_) return;
  if (!text_) text_.reset(new ZmString);
  element.text(encoding_ == kPlain ? std::move(text_) : decoded(zm_view(*text_), encoding_));
  listen(false);
}

// Here and not beside the other operations of packs: programs that never read XML, as the tools,
// are then linked without Expat, which they would spend a tenth of a short run on.
int ZmPack::unpackXML(const char* text, int length) {
  enum { kBroken = 1, kEmpty = 2, kOther = 3, kRefused = 4 };
  if (!text || length <= 0) return kBroken;
  ZmPackXMLReader reader;
  const auto result = reader.read({text, static_cast<std::size_t>(length)});
  if (result != ZmPackXMLReader::kDone)
    return result == ZmPackXMLReader::kRefused ? kRefused : kBroken;
  ZmPackObj& root = reader.root();
  if (zm_view(root.name()) != zm_view(typeXML())) return kOther;
  if (root.length() == 0) return kEmpty;
  // Not before: the text may stand in this object's own buffer.
  _clear();
  const Unfinished reading{*this};
  _decodeXML(root);
  return 0;
}
