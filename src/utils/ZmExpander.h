// Replaces the references in option values by what they refer to. Internal, under ZmConfigFile.
//
// A reference is "$W" or "$W.O", each also in braces, where W and O are words of the value:
// unqualified it gives option W of the scope section as stored; qualified it gives option O of
// section W, itself expanded in the same scope.
#ifndef ZM_EXPANDER_H
#define ZM_EXPANDER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ZmConfigHash.h"
#include "ZmCursor.h"
#include "ZmString.h"

// The next word of a value: a run of blanks, one of ". { } \ $" or a carriage return alone, or a
// run of anything else. Empty at the end only. The words of a value join back to it.
std::string_view zm_value_word(ZmCursor& in);

// Expands any number of values against one set of sections. Between two calls a caller may put the
// result in the place of the option that was expanded and tells so by replaced(); sections are
// neither added nor removed.
//
// References that lead back to an option under expansion give nothing, and one warning for each
// value expanded. The chain of options under expansion is kept here, not on the stack. Results are
// remembered from an option's second expansion on, and what an option that is nothing but a
// reference leads to is known at once, so the time follows the size of values and results whatever
// the depth of the references. Only the ways through a tangle of cycles, which may be more than can
// ever be walked, are bounded: after kReread bytes of values that were read again its references
// give nothing.
class ZmExpander {
 public:
  explicit ZmExpander(const ZmConfigHash& sections) : sections_(sections) {}

  // Expands `value` for the section `scope`, with `self` standing for "self" and "this". `option`
  // is the stored text that has this value, or null. The result is lent until the next call.
  std::string_view expand(std::string_view scope, std::string_view self, std::string_view value,
                          const ZmString* option);

  // The option expanded last now holds the result.
  void replaced();

 private:
  static constexpr long long kReread = 100'000'000;
  static constexpr std::size_t kNone = ~std::size_t{0};

  // An option that others refer to.
  struct Node {
    std::string_view section;  // lent by it
    std::string label;
    const ZmString* value = nullptr;
    std::size_t depth = kNone;  // its place in the chain while under expansion
    int tangle = -1;            // the tangle of cycles that it belongs to
    bool knotted = false;       // it was found in a cycle
    bool once = false;          // so it was, but before something that it rests on was replaced
    bool copied = false;        // an unqualified reference copied it unexpanded
    bool linked = false;        // what it refers to knows it as a user
    bool again = false;         // it has been expanded before
    bool known = false;         // the result stands ...
    const ZmConfig* scope = nullptr;  // ... unless null, in this scope only, and there ...
    unsigned epoch = 0;               // ... until an option that was copied is replaced
    const Node* cycle = nullptr;      // what led back to itself under it
    std::string result;
    Node* alias = nullptr;     // the option at whose expansion this one always ends up
    std::vector<Node*> users;  // those that refer to this option
  };

  // An option under expansion.
  struct Frame {
    Frame(Node* of, std::string_view section, std::string_view value, std::size_t from)
        : node(of), self(section), in(value), start(from) {}

    Node* node;  // null: nobody refers to it
    std::string_view self;
    ZmCursor in;
    std::size_t start;                // of its result in out_
    std::size_t tangled = 0;          // how many tangled_ there were before it
    std::size_t back = kNone;         // the first place in the chain that it led back to
    const ZmConfig* scope = nullptr;  // set when the result depends on the scope
    const Node* cycle = nullptr;
    Node* only = nullptr;  // the option that the result comes from, while ...
    bool mixed = false;    // ... it comes from nothing else
  };

  bool step(Frame& frame);
  bool qualified(Frame& frame, std::string_view name, bool braced);
  void unqualified(Frame& frame, std::string_view word, bool braced);
  bool refer(Frame& frame, const ZmConfig& config, std::string_view label, const ZmString& value);
  Node& node(const ZmConfig& config, std::string_view label, const ZmString& value);
  bool tiring(const Node& node);
  void enter(Node& node);
  void leave();
  void settle(const Frame& frame, std::size_t depth);
  void cut(Frame& frame, const Node& node, std::size_t depth);
  void recall(Frame& frame, const Node& node);
  bool usable(const Node& node) const;
  void write(Frame& frame, std::string_view text);
  void append(std::string_view text);
  const ZmConfig* section(std::string_view name) const;

  const ZmConfigHash& sections_;
  std::unordered_map<const ZmString*, Node> nodes_;
  std::vector<Frame> chain_;
  std::string out_;
  std::vector<Node*> tangled_;  // options of cycles whose first option is still under expansion
  std::vector<int> open_;       // for each tangle: how many of its options are under expansion
  std::string_view scope_;
  const ZmConfig* scope_section_ = nullptr;
  const ZmString* root_ = nullptr;
  const Node* cycle_ = nullptr;  // of the last result
  bool scoped_ = false;          // whether it depends on its scope
  unsigned epoch_ = 0;
  long long reread_ = 0;
};

#endif
