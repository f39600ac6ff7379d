// Replaces the references in option values by what they lead to: the option of the scope section as
// it is stored for an unqualified one, the option itself expanded in the same scope for a qualified
// one. Internal, under ZmConfigFile.
#ifndef ZM_CONFIG_EXPANDER_H
#define ZM_CONFIG_EXPANDER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ZmConfigObserver.h"
#include "ZmConfigReference.h"
#include "ZmString.h"

// Expands any number of values against one set of sections, in one reading: sections are neither
// added nor removed while it lives, and only replaced() options change.
//
// Options that hold a "$" and refer to each other by qualified references in a circle (a strongly
// connected component) stay one until the reading ends: references between them give nothing, and
// the one that is reached first is named in a warning. Circles are searched for only when a
// reference meets an option that is being expanded, so files without any never pay for it.
//
// Options under expansion stand in a chain here, not on the stack. Their results are remembered, so
// that the cost follows the texts and what they expand to. But a result that depends on the scope
// stands in that scope only, and until an option that it copied is replaced: N sections that look
// through the same K such options take N x K steps.
class ZmConfigExpander {
 public:
  explicit ZmConfigExpander(const ZmConfigHash& sections, ZmConfigObserver* observer = nullptr)
      : scope_{sections, {}}, observer_(observer) {}

  // Expands `value` for the section `scope`, with `self` standing for "self" and "this". `option`
  // is the stored text that has this value, or null. The result is lent until the next call.
  std::string_view expand(std::string_view scope, std::string_view self, std::string_view value,
                          const ZmString* option);

  // The option now holds what it expands to in the scope at hand.
  void replaced(const ZmString& option);

 private:
  static constexpr std::size_t kEver = ~std::size_t{0};

  // An option with a "$" that others refer to. Where a result stands, so do those of all options
  // that it rests on.
  struct Node {
    std::string section;  // as the file knows it
    std::string label;
    const ZmString* value = nullptr;

    bool entered = false;    // it is under expansion: it stands in the chain, or did when it ended
    std::size_t start = 0;   // its result is this part of out_ ...
    std::size_t length = 0;  // ...
    std::size_t stands = 0;  // ... while this is the epoch, or for kEver: 0, it has none
    bool copied = false;     // an unqualified reference copied it into a result of this epoch
    std::vector<Node*> users;  // the options whose texts refer to it, once they have been expanded
    bool linked = false;       // this option is in the lists of all that its text refers to

    Node* circle = nullptr;  // leads on to the one that stands for the circle; itself, if it does
    bool named = false;      // the circle for which it stands has been named
    std::size_t order = 0;   // place in the last search that met it ...
    std::size_t low = 0;     // ... and the first place that it leads back to
  };
  // A value that is being read: the one asked for, which may have no node, or one under it.
  struct Reading {
    Node* node;
    std::string_view self;
    ZmTextCursor in;
    std::size_t start;     // of its result in out_
    bool scoped = false;   // the result depends on the scope
    std::size_t told = 0;  // references, to the observer
  };
  bool walk(std::string_view self, std::string_view value, const ZmString* option);
  Node* step(Reading& reading);
  void enter(Node* node, std::string_view self, std::string_view value);
  void leave();
  void search(std::string_view self, std::string_view value);
  Node* edge(Reading& reading);
  static void close(Node& first, std::vector<Node*>& open);
  static void join(Node& node, Node& with);
  static Node* circle(Node& node);
  bool cut(Node* from, const ZmString& to);
  Node& node(const ZmConfigPiece& piece);
  bool stands(const Node& node) const { return node.stands == kEver || node.stands == epoch_; }
  void forget();
  void append(std::string_view text);
  void tell(Reading& reading, const ZmConfigPiece& piece, bool circle);

  ZmConfigScope scope_;
  ZmConfigObserver* observer_;        // null: nobody wants to know
  const ZmString* option_ = nullptr;  // that is asked for
  std::unordered_map<const ZmString*, Node> nodes_;
  std::vector<Reading> chain_;
  // Remembered results, one in the other as they were made, and the result at hand behind them.
  std::string out_;
  std::size_t start_ = 0;       // where the result at hand begins
  std::size_t remembered_ = 0;  // where remembered results end ...
  std::size_t lasting_ = 0;     // ... and those that do not depend on the scope
  std::size_t epoch_ = 1;       // results that depend on the scope stand for one epoch
  std::size_t visits_ = 0;      // places given by all searches
};

#endif
