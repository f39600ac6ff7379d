#ifndef ZM_PACK_H
#define ZM_PACK_H

#include <utility>

#include "ZmBase.h"
#include "ZmOwned.h"
#include "ZmString.h"

class ZmPackObj;

/// The base of every class that can be written to and read from records.
///
/// A binary record is the version word 1 (32 bits) and then tagged fields up to its end; all
/// numbers are big-endian. A field is its tag (signed 16 bits), a type code (16 bits) and the
/// payload:
///
/// | code | value | payload |
/// |---|---|---|
/// | 1 | int | 4 bytes |
/// | 2 | char | 1 byte |
/// | 3 | text | 4-byte length, the bytes |
/// | 4 | nested pack | 4-byte type code of the object, 4-byte length, its fields |
/// | 5 | float | 4 bytes, the IEEE 754 single-precision bits |
/// | 6 | unsigned char | 1 byte |
/// | 7 | long long | 8 bytes |
///
/// A class writes its fields in encode() by store() calls and reads them in decode() by the
/// matching restore() calls: decode() runs once for every field of the record, and only the
/// restore() whose tag and type are those of the current field takes effect. So fields may come in
/// any order, and unknown ones are skipped, except that a field of code 7 or of an unknown code
/// that nobody takes ends the record. A truncated payload ends it too, silently.
///
/// The XML form is one element, named by typeXML(), with an element for every member that
/// encodeXML() stores by name; decodeXML() looks the members up by name, in any order:
///
///     <?xml version="1.0" encoding="UTF-8"?>
///     <config>
///       <name>node01</name>
///       <address>
///         <value>167772161</value>
///       </address>
///       <options>
///         <item key="threads">8</item>
///         <item key="raw" encoding="base64">AP8=</item>
///       </options>
///     </config>
///
/// - Numbers are decimal; a float has the fewest digits that give its bits back, or is "inf",
///   "-inf", "nan" or "-nan", which has unusual bits in parentheses. A char is a text of one byte.
/// - A text stands as it is, markup escaped. One that XML 1.0 can't carry (control characters,
///   bytes that are no UTF-8) stands as base64 (RFC 4648) with encoding="base64". Every byte comes
///   back.
/// - A nested pack is an element with the elements of its members. The entries of lists and hashes
///   are "item" elements, those of a hash with their key, sorted by it.
/// - A name that is not made of ASCII letters, digits, "_", "-" and "." stands in an attribute:
///   `<element name="...">`. Keys and such names take key-encoding and name-encoding="base64".
/// - Of several elements of one name the last counts, as in a record. Unknown elements and
///   attributes are ignored, and so is text beside elements.
///
/// Copies start with an empty buffer of their own. One thread at a time.
class ZM_EXPORT ZmPack : public ZmBase {
 public:
  ZmPack() = default;                      ///< Without a buffer.
  ZmPack(const ZmPack&) : ZmBase() {}      ///< The buffer is not copied.
  ZmPack& operator=(const ZmPack& other);  ///< Empties this object's buffer.
  ~ZmPack() override = default;            ///< Slot 0.
  virtual int type() const { return 71; }  ///< Slot 1. The type code.
  virtual void encode() = 0;               ///< Slot 2. Stores every member.
  virtual void decode() = 0;               ///< Slot 3. Restores every member; once per field.
  virtual ZmString typeXML() const { return "pack"; }  ///< Slot 4. The XML element name.
  virtual void encodeXML() = 0;  ///< Slot 5. Stores every member as an element.
  virtual void decodeXML() = 0;  ///< Slot 6. Restores every member; once per object.

  /// @name Binary records
  /// @{
  void pack();  ///< Makes the object's record in the buffer, which is empty when this throws.
  /// The record made by pack(), packSize() bytes, lent until the next change; null when empty.
  const char* packContents() const {
    return state_ ? reinterpret_cast<const char*>(state_->buffer) : nullptr;
  }
  int packSize() const { return state_ ? state_->used : 0; }  ///< Bytes of the record.
  /// Reads a record of `length` bytes, which may be this object's own: 0 done, 1 shorter than a
  /// version word, 2 nothing behind it, 3 another version. Empties the buffer, but for result 1.
  int unpack(const char* data, int length);
  /// Packs into a file and empties the buffer, but where none can be opened. The number of bytes
  /// written, or 0 when the file can't be opened or closed. A full disk takes fewer bytes than the
  /// record has: pack() first, and compare with packSize(). Waits for the reader of a pipe.
  int archive(const ZmString& path);
  /// Unpacks a file. The number of bytes read, or 0 when it is no readable regular file (never a
  /// pipe) or unpack() failed. One of 2,147,483,647 bytes or more throws std::bad_alloc.
  int recover(const ZmString& path);
  void _debug_print() const;  ///< Prints the buffer in hexadecimal on standard output.
  /// @}

  /// @name XML text
  /// @{

  /// Makes the object's XML text, UTF-8, in the buffer: packContents(), packSize(). Objects may
  /// nest deeper than unpackXML() reads.
  void packXML();
  /// Reads an XML text of `length` bytes: 0 done, 1 it is not well-formed, 2 the outermost element
  /// holds no other (as that of an empty list), 3 it has another name than typeXML(), 4 refused: a
  /// document type (so no entity is ever declared or fetched), or elements more than 256 levels
  /// deep. Only 0 changes the object. Any encoding that Expat knows is read.
  int unpackXML(const char* text, int length);
  /// The same for the whole text.
  int unpackXML(const ZmString& text) { return unpackXML(text.value(), text.length()); }
  /// @}

  /// @name Fields, for encode()
  /// A record has room for 16 bits of a tag, so tags are -32768 to 32767. Of any other the low 16
  /// bits are stored, and restore() never takes the field.
  /// @{
  void store(int tag, int value);              ///< Type code 1.
  void store(int tag, char value);             ///< Type code 2.
  void store(int tag, unsigned char value);    ///< Type code 6.
  void store(int tag, long long value);        ///< Type code 7.
  void store(int tag, float value);            ///< Type code 5.
  void store(int tag, const ZmString& value);  ///< Type code 3.
  void store(int tag, const char* value);      ///< The same up to the zero byte; null stores "".
  void store(int tag, ZmPack& value);          ///< Type code 4, nested; its own buffer is emptied.
  /// @}

  /// @name Fields, for decode()
  /// Each takes the current field when tag and type match, and leaves the value alone otherwise.
  /// @{
  void restore(int tag, int& value);            ///< Type code 1.
  void restore(int tag, char& value);           ///< Type code 2.
  void restore(int tag, unsigned char& value);  ///< Type code 6.
  void restore(int tag, long long& value);      ///< Type code 7.
  void restore(int tag, float& value);          ///< Type code 5.
  void restore(int tag, ZmString& value);       ///< Type code 3. Replaces the text.
  /// Takes a nested pack whose type code is value.type(); with any other, and more than 1000 levels
  /// deep, the record ends.
  void restore(int tag, ZmPack& value);
  void trashObj(int tag);  ///< Skips a nested pack with this tag.
  /// @}

  /// @name Members, for encodeXML()
  /// @{
  void storeXML(const ZmString& name, int value);              ///< A number.
  void storeXML(const ZmString& name, char value);             ///< A text of one byte.
  void storeXML(const ZmString& name, unsigned char value);    ///< A number.
  void storeXML(const ZmString& name, long long value);        ///< A number.
  void storeXML(const ZmString& name, float value);            ///< A number.
  void storeXML(const ZmString& name, const ZmString& value);  ///< A text.
  void storeXML(const ZmString& name, const char* value);  ///< Up to the zero byte; null stores "".
  void storeXML(const ZmString& name,
                ZmPack& value);  ///< A nested pack; its own buffer is emptied.
  /// @}

  /// @name Members, for decodeXML()
  /// Each takes the member's element, and leaves the value alone when there is none or its text is
  /// no such value: a number out of range, of several words or followed by anything but blanks, an
  /// unreadable encoding, elements where a text should be.
  /// @{
  void restoreXML(const ZmString& name, int& value);            ///< A number.
  void restoreXML(const ZmString& name, char& value);           ///< A text of one byte.
  void restoreXML(const ZmString& name, unsigned char& value);  ///< A number.
  void restoreXML(const ZmString& name, long long& value);      ///< A number.
  void restoreXML(const ZmString& name, float& value);          ///< A number.
  void restoreXML(const ZmString& name, ZmString& value);       ///< A text, which it replaces.
  void restoreXML(const ZmString& name, ZmPack& value);         ///< A nested pack.

  /// @}

 protected:
  /// @name Entries as XML, for containers
  /// @{
  void _storeItem(const ZmString* key, const ZmString& value);  ///< A null key: without one.
  void _storeItem(const ZmString* key, ZmPack& value);          ///< The same.
  /// The number of elements inside that one, which the element being decoded holds; -1 when it
  /// doesn't, or when there is text instead.
  int _insideXML(const ZmString& name) const;
  /// The first "item" at or behind position `at` of the element being decoded; `at` moves behind
  /// it. Null: no more. Lent; its key and text may be taken.
  ZmPackObj* _item(int& at) const;
  /// The item as a new text, which is taken from it; null when it has no readable one.
  static ZmOwned<ZmString> _takeItem(ZmPackObj& item, const ZmString*);
  /// The item as a new pack.
  template <class T>
  ZmOwned<T> _takeItem(ZmPackObj& item, const T*) {
    ZmOwned<T> value(new T);
    _restoreItem(item, *value);
    return value;
  }
  static ZmOwned<ZmString> _takeKey(ZmPackObj& item);  ///< The item's key; null when it has none.
  /// @}

  /// @name Stepping through a record, for containers whose decode() reads several fields
  /// @{
  bool _next();  ///< Reads a field header; false when none is left.
  void _yank();  ///< Skips the current field unless it was taken.
  /// Restores a value and skips the field when it is another; false when it can't be read.
  template <class T>
  bool _element(int tag, T& value) {
    restore(tag, value);
    if (!_consumed() && !(state_ && state_->at.left > 0)) return false;
    _yank();
    return true;
  }
  /// Whether restore(tag, value) would take the current field.
  bool _offers(int tag, const ZmPack& value) const;
  int _tag() const { return state_ ? state_->at.tag : 0; }    ///< Tag of the current field.
  int _code() const { return state_ ? state_->at.code : 0; }  ///< Type code of the current field.
  /// Whether the current field was taken.
  bool _consumed() const { return state_ && state_->at.consumed; }
  /// @}

 private:
  // A place in a record that is read, or in the parsed tree of an XML text.
  struct Place {
    const unsigned char* cursor = nullptr;  // the next byte
    int left = 0;                           // bytes from there on
    int code = 0;
    short tag = 0;
    bool consumed = false;
    ZmPackObj* element = nullptr;  // of XML; null while a record is read
  };
  // What packing and unpacking need.
  struct State {
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { delete[] buffer; }

    unsigned char* buffer = nullptr;
    int used = 0;      // bytes in the buffer,
    int capacity = 0;  // which has room for so many
    int depth = 0;     // levels around what is written or read
    Place at;
  };

  void _clear() noexcept { state_.reset(); }
  State& _state();
  void _store(const void* bytes, int n);  // appends; n <= 0 nothing
  unsigned char* _room(long long n);      // n more bytes in use, to be written
  void _grow(long long need);
  unsigned char* _field(int tag, int code, long long payload);  // room for the payload
  template <class T>
  void _number(int tag, int code, T value);
  template <class T>
  bool _take(int tag, int code, T& value);
  const unsigned char* _bytes(int n);  // consumes n bytes of payload, or the rest and null
  void _fields();                      // decode() for each field, then yank
  void _decodeXML(ZmPackObj& element);
  void _restoreItem(ZmPackObj& item, ZmPack& value);
  // Lets a nested object work with the state of the one around it, for as long as this lives.
  class Loan {
   public:
    Loan(ZmPack& from, ZmPack& to);
    ~Loan();

   private:
    ZmPack& from_;
    ZmPack& to_;
  };
  // Empties the buffer at its end, unless what it is to hold is finished.
  struct Unfinished {
    ~Unfinished() {
      if (!finished) pack._clear();
    }

    ZmPack& pack;
    bool finished = false;
  };

  struct Writer;  // of XML
  ZmPackObj* _xml() const { return state_ ? state_->at.element : nullptr; }
  const ZmString* _text(const ZmString& name) const;  // of the member's element; null: none
  template <class T>
  void _numberXML(const ZmString& name, T value);
  template <class T>
  void _takeXML(const ZmString& name, T& value) const;

  ZmOwned<State> state_;  // null but while something is packed or unpacked
};

#endif
