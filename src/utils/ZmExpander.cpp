#include "ZmExpander.h"

#include <algorithm>
#include <climits>
#include <iostream>
#include <new>
#include <utility>

#include "ZmText.h"

namespace {

constexpr ZmCharSet kBlank(" \t"), kSign(".{}\\$\r"), kWordStop(" \t\r.{}\\$");

bool hasreference(std::string_view text) { return text.find('$') != std::string_view::npos; }

}  // namespace

std::string_view zm_value_word(ZmCursor& in) {
  if (kBlank.has(in.peek())) return in.skip(kBlank);
  return kSign.has(in.peek()) ? in.take() : in.until(kWordStop);
}

std::string_view ZmExpander::expand(std::string_view scope, std::string_view self,
                                    std::string_view value, const ZmString* option) {
  out_.clear();
  scope_ = scope;
  scope_section_ = section(scope);
  root_ = option;
  const auto met = nodes_.find(option);
  Frame top(nullptr, self, value, 0);
  if (met == nodes_.end()) {
    chain_.push_back(top);
  } else {
    Node& node = met->second.alias ? *met->second.alias : met->second;
    if (usable(node)) {
      recall(top, node);
      cycle_ = top.cycle;
      scoped_ = top.scope != nullptr;
    } else {
      enter(node);
    }
  }
  while (!chain_.empty())
    if (!step(chain_.back())) leave();
  if (cycle_) {
    std::cerr << "WARNING: section " + std::string(cycle_->section) + " option " + cycle_->label +
                     " refers to itself... skipping.\n";
  }
  return out_;
}

// What rests on the option is forgotten. But a result that is the same in every scope and has no
// reference in it expands to itself, so that it still stands now that it is stored.
void ZmExpander::replaced() {
  const auto met = nodes_.find(root_);
  if (met == nodes_.end()) return;
  if (met->second.copied) ++epoch_;
  if (!cycle_ && !scoped_ && !hasreference(out_)) return;
  std::vector<Node*> stale{&met->second};
  while (!stale.empty()) {
    Node& node = *stale.back();
    stale.pop_back();
    node.known = node.linked = false;
    node.once |= std::exchange(node.knotted, false);
    node.alias = nullptr;
    node.tangle = -1;
    stale.insert(stale.end(), node.users.begin(), node.users.end());
    node.users.clear();
  }
}

// Copies and replaces up to the end, or to a reference that must be expanded first: true then.
bool ZmExpander::step(Frame& frame) {
  ZmCursor& in = frame.in;
  for (;;) {
    const std::string_view rest = in.rest();
    write(frame, in.take(std::min(rest.find('$'), rest.size())));
    in.take();
    const bool braced = in.accept('{');
    if (in.eof()) return false;  // a lone "$" or "${" vanishes
    std::string_view word = zm_value_word(in);
    if (word == "self" || word == "this") word = frame.self;
    if (!in.is('.')) {
      unqualified(frame, word, braced);
    } else if (qualified(frame, word, braced)) {
      return true;
    }
  }
}

bool ZmExpander::qualified(Frame& frame, std::string_view name, bool braced) {
  const ZmConfig* config = section(name);
  if (!config) return false;  // the reference is dropped up to its period, which is text
  frame.in.take();
  const std::string_view label = zm_value_word(frame.in);
  if (braced) frame.in.accept('}');
  if (label == "_") {
    write(frame, name);
    return false;
  }
  const ZmString* value = label.empty() ? nullptr : config->_find(label);
  return value && refer(frame, *config, label, *value);
}

void ZmExpander::unqualified(Frame& frame, std::string_view word, bool braced) {
  frame.scope = scope_section_;
  frame.mixed = true;
  if (!scope_section_) return;
  if (word == "_") {
    append(scope_);
  } else if (const ZmString* value = scope_section_->_find(word)) {
    append(zm_view(*value));
    if (hasreference(zm_view(*value))) node(*scope_section_, word, *value).copied = true;
  }
  // The word behind is always consumed, whatever it is, and a "}" behind that closes the braces.
  zm_value_word(frame.in);
  if (braced) frame.in.accept('}');
}

bool ZmExpander::refer(Frame& frame, const ZmConfig& config, std::string_view label,
                       const ZmString& value) {
  if (!hasreference(zm_view(value))) {
    write(frame, zm_view(value));
    return false;
  }
  Node& named = node(config, label, value);
  if (frame.node && !frame.node->linked) named.users.push_back(frame.node);
  if (&value == root_) named.depth = 0;
  Node& node = named.alias ? *named.alias : named;
  frame.mixed |= frame.only != nullptr;
  frame.only = &node;
  if (node.depth != kNone) {
    cut(frame, node, node.depth);
  } else if (usable(node)) {
    recall(frame, node);
  } else if (tiring(node)) {
    cut(frame, node, chain_.size() - 1);
  } else {
    enter(node);
    return true;
  }
  return false;
}

ZmExpander::Node& ZmExpander::node(const ZmConfig& config, std::string_view label,
                                   const ZmString& value) {
  const auto [at, made] = nodes_.try_emplace(&value);
  Node& node = at->second;
  if (made) {
    node.section = zm_view(config.name());
    node.label = label;
    node.value = &value;
  }
  return node;
}

// Whether too much has been read again to enter this option once more. What was found in a cycle
// before gets a second chance: the cycle may have ended with an option that was replaced.
bool ZmExpander::tiring(const Node& node) {
  if (!node.knotted && !node.once) return false;
  reread_ += node.value->length();
  return reread_ > (node.knotted ? kReread : 2 * kReread);
}

void ZmExpander::cut(Frame& frame, const Node& node, std::size_t depth) {
  frame.back = std::min(frame.back, depth);
  if (!frame.cycle) frame.cycle = &node;
}

void ZmExpander::recall(Frame& frame, const Node& node) {
  append(node.result);
  if (node.scope) frame.scope = node.scope;
  if (!frame.cycle) frame.cycle = node.cycle;
}

void ZmExpander::enter(Node& node) {
  if (node.tangle >= 0) ++open_[static_cast<std::size_t>(node.tangle)];
  node.depth = chain_.size();
  chain_.emplace_back(&node, node.section, zm_view(*node.value), out_.size()).tangled =
      tangled_.size();
}

void ZmExpander::leave() {
  const Frame frame = chain_.back();
  chain_.pop_back();
  settle(frame, chain_.size());
  if (chain_.empty()) {
    cycle_ = frame.cycle;
    scoped_ = frame.scope != nullptr;
    tangled_.clear();
    const auto root = nodes_.find(root_);
    if (root != nodes_.end()) root->second.depth = kNone;
    return;
  }
  Frame& above = chain_.back();
  if (frame.back < chain_.size()) above.back = std::min(above.back, frame.back);
  if (frame.scope) above.scope = frame.scope;
  if (!above.cycle) above.cycle = frame.cycle;
}

// Keeps what can be kept of a result. Inside a cycle it depends on where the cycle was entered, so
// it stands only for the option through which the chain came in, and only while no other option of
// that tangle is under expansion.
void ZmExpander::settle(const Frame& frame, std::size_t depth) {
  Node* node = frame.node;
  if (!node) return;
  node->depth = kNone;
  node->linked = true;
  if (node->tangle >= 0) --open_[static_cast<std::size_t>(node->tangle)];
  if (frame.back != kNone) node->knotted = true;
  if (frame.back < depth) {
    tangled_.push_back(node);
    return;
  }
  if (tangled_.size() > frame.tangled) {
    node->tangle = static_cast<int>(open_.size());
    open_.push_back(0);
    for (std::size_t i = frame.tangled; i < tangled_.size(); ++i)
      tangled_[i]->tangle = node->tangle;
    tangled_.resize(frame.tangled);
  }
  if (!frame.cycle && !frame.mixed && frame.only)
    node->alias = frame.only->alias ? frame.only->alias : frame.only;
  if (std::exchange(node->again, true)) {
    node->known = true;
    node->scope = frame.scope;
    node->epoch = epoch_;
    node->cycle = frame.cycle;
    node->result.assign(out_, frame.start);
  }
}

bool ZmExpander::usable(const Node& node) const {
  if (!node.known) return false;
  if (node.scope && (node.scope != scope_section_ || node.epoch != epoch_)) return false;
  return node.tangle < 0 || open_[static_cast<std::size_t>(node.tangle)] == 0;
}

void ZmExpander::write(Frame& frame, std::string_view text) {
  frame.mixed |= !text.empty();
  append(text);
}

void ZmExpander::append(std::string_view text) {
  if (text.size() >= INT_MAX - out_.size()) throw std::bad_alloc();
  out_ += text;
}

const ZmConfig* ZmExpander::section(std::string_view name) const {
  return sections_._get(name, ZmSlotTable::hash(name));
}
