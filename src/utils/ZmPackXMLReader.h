// Reads XML text into a tree of elements, with Expat. Internal; under ZmPack::unpackXML().
#ifndef ZM_PACK_XML_READER_H
#define ZM_PACK_XML_READER_H

#include <memory>
#include <string_view>
#include <vector>

#include "ZmPackObj.h"
#include "ZmString.h"

struct XML_ParserStruct;

// What the handlers keep while one text is read. The attributes they know are those that ZmPack
// writes: "encoding" (of the text), "key", "key-encoding", and for an element called "element"
// "name" and "name-encoding".
class ZmPackXMLReader {
 public:
  static constexpr int kDepth = 256;  // levels of elements, as many as other readers take
  enum Result { kDone, kBroken, kRefused, kNoMemory };

  ZmPackXMLReader() = default;
  ZmPackXMLReader(const ZmPackXMLReader&) = delete;
  ZmPackXMLReader& operator=(const ZmPackXMLReader&) = delete;

  // Reads a whole text, once. kBroken: it is not well-formed; kRefused: it has a document type, or
  // elements deeper than kDepth. Throws std::bad_alloc only.
  Result read(std::string_view text);
  // The outermost element, after kDone.
  ZmPackObj& root() const { return *root_; }

  // What the handlers below are for.
  void enter(const char* name, const char** attributes);
  void leave();
  void data(std::string_view text);
  void stop(Result why);
  bool stopped() const { return result_ != kDone; }

 private:
  enum Encoding { kPlain, kBase64, kUnknown };

  static Encoding encoding(const char* name);
  static ZmOwned<ZmString> decoded(std::string_view value, Encoding encoding);  // or null
  void listen(bool on);  // whether data() is called

  XML_ParserStruct* parser_ = nullptr;  // while reading
  Result result_ = kDone;
  std::unique_ptr<ZmPackObj> root_;
  std::vector<ZmPackObj*> open_;  // from the root to the innermost open element
  ZmString name_;                 // of the last element; its room serves all
  bool leaf_ = false;             // nothing has been found inside the innermost one
  Encoding encoding_ = kPlain;    // of its text
  ZmOwned<ZmString> text_;        // of the same, so far; null: empty
};

// Expat's handlers; the first argument, its user data, is a ZmPackXMLReader. They throw nothing:
// what goes wrong stops the parser.
extern "C" {
void ZmPackStartElement(void* reader, const char* name, const char** attributes) noexcept;
void ZmPackEndElement(void* reader, const char* name) noexcept;
void ZmPackData(void* reader, const char* text, int length) noexcept;
}

#endif
