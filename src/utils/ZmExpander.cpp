#include "ZmExpander.h"

#include <algorithm>
#include <climits>
#include <iostream>
#include <new>

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
  Node* node = met == nodes_.end() ? nullptr : &met->second;
  if (node && usable(*node)) {
    append(node->result);
    cycle_ = node->cycle;
    changeable_ = !node->lasting;
  } else {
    if (node) {
      enter(*node, self, value);
    } else {
      chain_.emplace_back(nullptr, self, value, 0);
    }
    while (!chain_.empty())
      if (!step(chain_.back())) leave();
  }
  if (cycle_) {
    std::cerr << "WARNING: section " + cycle_->first + " option " + cycle_->second +
                     " refers to itself... skipping.\n";
  }
  return out_;
}

void ZmExpander::replaced() {
  const auto met = nodes_.find(root_);
  if (met == nodes_.end() || !(changeable_ || met->second.copied)) return;
  ++epoch_;
  open_.clear();
}

// Copies and replaces up to the end, or to a reference that must be expanded first: true then.
bool ZmExpander::step(Frame& frame) {
  ZmCursor& in = frame.in;
  for (;;) {
    const std::string_view rest = in.rest();
    append(in.take(std::min(rest.find('$'), rest.size())));
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
    append(name);
    return false;
  }
  const ZmString* value = label.empty() ? nullptr : config->_find(label);
  return value && refer(frame, name, label, *value);
}

void ZmExpander::unqualified(Frame& frame, std::string_view word, bool braced) {
  frame.scope = scope_section_;
  if (!scope_section_) return;
  if (word == "_") {
    append(scope_);
  } else if (const ZmString* value = scope_section_->_find(word)) {
    append(view(*value));
    if (hasreference(view(*value))) nodes_[value].copied = true;
  }
  // The word behind is always consumed, whatever it is, and a "}" behind that closes the braces.
  zm_value_word(frame.in);
  if (braced) frame.in.accept('}');
}

bool ZmExpander::refer(Frame& frame, std::string_view name, std::string_view label,
                       const ZmString& value) {
  if (!hasreference(view(value))) {
    append(view(value));
    return false;
  }
  Node& node = nodes_[&value];
  if (&value == root_) node.depth = 0;
  if (node.depth != kNone) {
    cut(frame, name, label, node.depth);
  } else if (usable(node)) {
    append(node.result);
    if (node.scope) frame.scope = node.scope;
    if (!frame.cycle) frame.cycle = node.cycle;
  } else if (node.met == epoch_ && node.winding && ++detours_ > kDetours) {
    cut(frame, name, label, chain_.size() - 1);
  } else {
    enter(node, name, view(value));
    return true;
  }
  return false;
}

void ZmExpander::cut(Frame& frame, std::string_view name, std::string_view label,
                     std::size_t depth) {
  frame.back = std::min(frame.back, depth);
  if (!frame.cycle) frame.cycle = &cycles_.emplace_back(name, label);
}

void ZmExpander::enter(Node& node, std::string_view name, std::string_view value) {
  if (node.met != epoch_) {
    node.met = epoch_;
    node.tangle = -1;
    node.winding = false;
  }
  if (node.tangle >= 0) ++open_[static_cast<std::size_t>(node.tangle)];
  node.depth = chain_.size();
  chain_.emplace_back(&node, name, value, out_.size()).tangled = tangled_.size();
}

void ZmExpander::leave() {
  const Frame frame = chain_.back();
  chain_.pop_back();
  settle(frame, chain_.size());
  if (chain_.empty()) {
    cycle_ = frame.cycle;
    changeable_ = !lasting(frame);
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
  if (node->tangle >= 0) --open_[static_cast<std::size_t>(node->tangle)];
  if (frame.back < depth) {
    node->winding = true;
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
  if (std::exchange(node->again, true)) {
    node->known = true;
    node->lasting = lasting(frame);
    node->epoch = epoch_;
    node->scope = frame.scope;
    node->cycle = frame.cycle;
    node->result.assign(out_, frame.start);
  }
}

// A result without a reference in it expands to itself, so it still stands once it is stored.
bool ZmExpander::lasting(const Frame& frame) const {
  return !frame.cycle && !hasreference(std::string_view(out_).substr(frame.start));
}

bool ZmExpander::usable(const Node& node) const {
  if (!node.known || (node.scope && node.scope != scope_section_)) return false;
  if (node.lasting) return true;
  if (node.epoch != epoch_) return false;
  return node.tangle < 0 || node.met != epoch_ || open_[static_cast<std::size_t>(node.tangle)] == 0;
}

void ZmExpander::append(std::string_view text) {
  if (text.size() >= INT_MAX - out_.size()) throw std::bad_alloc();
  out_ += text;
}

const ZmConfig* ZmExpander::section(std::string_view name) const {
  return sections_._get(name, ZmSlotTable::hash(name));
}
