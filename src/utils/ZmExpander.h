// Replaces the references in option values by what they refer to. Internal, under ZmConfigFile.
//
// A reference is "$W" or "$W.O", each also in braces, where W and O are words of the value:
// unqualified it gives option W of the scope section as stored; qualified it gives option O of
// section W, itself expanded in the same scope.
#ifndef ZM_EXPANDER_H
#define ZM_EXPANDER_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
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
// value expanded. The chain of options under expansion is kept here, not on the stack, and results
// are remembered from an option's second expansion on, so the time follows the size of values and
// results whatever the shape of the references. Only the ways through a tangle of cycles, which may
// be more than can ever be walked, are bounded: after kDetours of them its references give nothing.
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
  static constexpr int kDetours = 1'000'000;
  static constexpr std::size_t kNone = ~std::size_t{0};

  using Names = std::pair<std::string, std::string>;  // of a section and an option

  // An option that others refer to.
  struct Node {
    std::size_t depth = kNone;  // its place in the chain while under expansion
    unsigned met = 0;           // the epoch in which it was last expanded
    int tangle = -1;            // the tangle of cycles that it belongs to, in that epoch
    bool winding = false;       // in that epoch it was found inside a cycle
    bool copied = false;        // an unqualified reference copied it unexpanded
    bool again = false;         // it has been expanded before

    // Its result is known and stands ...
    bool known = false;
    bool lasting = false;             // always, or
    unsigned epoch = 0;               // while no option that results rest on is replaced,
    const ZmConfig* scope = nullptr;  // and, unless null, in this scope only.
    const Names* cycle = nullptr;     // what led back to itself under it
    std::string result;
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
    const Names* cycle = nullptr;
  };

  bool step(Frame& frame);
  bool qualified(Frame& frame, std::string_view name, bool braced);
  void unqualified(Frame& frame, std::string_view word, bool braced);
  bool refer(Frame& frame, std::string_view name, std::string_view label, const ZmString& value);
  void enter(Node& node, std::string_view name, std::string_view value);
  void leave();
  void settle(const Frame& frame, std::size_t depth);
  void cut(Frame& frame, std::string_view name, std::string_view label, std::size_t depth);
  bool usable(const Node& node) const;
  void append(std::string_view text);
  const ZmConfig* section(std::string_view name) const;
  bool lasting(const Frame& frame) const;

  const ZmConfigHash& sections_;
  std::unordered_map<const ZmString*, Node> nodes_;
  std::vector<Frame> chain_;
  std::string out_;
  std::deque<Names> cycles_;
  std::vector<Node*> tangled_;  // options of cycles whose first option is still under expansion
  std::vector<int> open_;       // for each tangle: how many of its options are under expansion
  std::string_view scope_;
  const ZmConfig* scope_section_ = nullptr;
  const ZmString* root_ = nullptr;
  const Names* cycle_ = nullptr;  // of the last result
  bool changeable_ = false;       // whether the last result would expand to something else again
  unsigned epoch_ = 1;
  int detours_ = 0;
};

#endif
