#include "ZmConfigExpander.h"

#include <algorithm>
#include <climits>
#include <iostream>
#include <new>
#include <utility>

#include "ZmText.h"

// A walk that fails has met a circle, and the search behind it makes that one known: there are not
// more rounds than circles.
std::string_view ZmConfigExpander::expand(std::string_view scope, std::string_view self,
                                          std::string_view value, const ZmString* option) {
  const ZmConfig* config = scope_.section(scope);
  if (config != scope_.config) forget();
  scope_.name = scope;
  scope_.config = config;
  option_ = option;
  while (!walk(self, value, option)) search(self, value);
  return std::string_view(out_).substr(start_);
}

// A result without a "$" expands to itself: what rests on the option stands. With one it is read
// again from now on, and what holds it as it was expanded is old.
void ZmConfigExpander::replaced(const ZmString& option) {
  const auto met = nodes_.find(&option);
  if (met == nodes_.end()) return;
  if (std::exchange(met->second.copied, false)) forget();
  if (!zm_has_reference(zm_view(option))) return;
  met->second.linked = false;
  for (std::vector<Node*> old{&met->second}; !old.empty();) {
    Node& node = *old.back();
    old.pop_back();
    node.stands = 0;
    for (Node* user : node.users)
      if (user->stands == epoch_) old.push_back(user);
  }
}

// The results that depend on the scope are old.
void ZmConfigExpander::forget() {
  ++epoch_;
  remembered_ = lasting_;
}

// False when it met a circle that is not known yet.
bool ZmConfigExpander::walk(std::string_view self, std::string_view value, const ZmString* option) {
  out_.resize(remembered_);
  start_ = remembered_;
  const auto met = nodes_.find(option);
  Node* root = met == nodes_.end() ? nullptr : &met->second;
  if (root && stands(*root)) {
    out_.append(out_, root->start, root->length);
    return true;
  }
  enter(root, self, value);
  while (!chain_.empty()) {
    Node* node = step(chain_.back());
    if (!node) {
      leave();
    } else if (!node->entered) {
      enter(node, node->section, zm_view(*node->value));
    } else {
      for (const Reading& reading : chain_)
        if (reading.node) reading.node->entered = false;
      chain_.clear();
      return false;
    }
  }
  return true;
}

// Copies and replaces up to the end, or to a reference to an option that must be expanded first.
ZmConfigExpander::Node* ZmConfigExpander::step(Reading& reading) {
  const bool remembered = chain_.size() > 1;
  while (!reading.in.eof()) {
    const bool reference = reading.in.is('$');
    const ZmConfigPiece piece = scope_.next(reading.in, reading.self);
    const bool circle = piece.value && piece.qualified && cut(reading.node, *piece.value);
    if (observer_ && reference) [[unlikely]]
      tell(reading, piece, circle);
    reading.scoped |= piece.scoped;
    append(piece.text);
    if (!piece.value || circle) continue;
    const std::string_view value = zm_view(*piece.value);
    if (!zm_has_reference(value)) {
      append(value);
    } else if (!piece.qualified) {
      append(value);
      if (remembered) node(piece).copied = true;
    } else {
      Node& to = node(piece);
      if (remembered && !reading.node->linked) to.users.push_back(reading.node);
      if (!stands(to)) return &to;
      append(std::string_view(out_).substr(to.start, to.length));
      reading.scoped |= to.stands != kEver;
    }
  }
  return nullptr;
}

void ZmConfigExpander::enter(Node* node, std::string_view self, std::string_view value) {
  chain_.push_back({node, self, ZmTextCursor(value), out_.size()});
  if (!node) return;
  node->entered = true;
  Node* in = circle(*node);
  if (!in || std::exchange(in->named, true)) return;
  if (observer_) return observer_->circle(*node->value);
  std::cerr << "WARNING: section " + node->section + " option " + node->label +
                   " refers to itself... skipping.\n";
}

// The result stays where it was made, inside that of the option around it: to remember it takes no
// copy.
void ZmConfigExpander::leave() {
  const Reading reading = chain_.back();
  chain_.pop_back();
  if (reading.node) reading.node->entered = false;
  if (chain_.empty()) return;  // what was asked for is replaced by its result
  chain_.back().scoped |= reading.scoped;
  Node& node = *reading.node;
  node.start = reading.start;
  node.length = out_.size() - reading.start;
  node.stands = reading.scoped ? epoch_ : kEver;
  node.linked = true;
  remembered_ = out_.size();
  if (!reading.scoped) lasting_ = remembered_;
  if (observer_) observer_->leave(std::string_view(out_).substr(reading.start));
}

// Finds the circles among the options that a value leads to (R. Tarjan, "Depth-first search and
// linear graph algorithms", 1972). What has a result that stands leads to none that is not known.
void ZmConfigExpander::search(std::string_view self, std::string_view value) {
  const std::size_t before = visits_;
  std::vector<Reading> path{{nullptr, self, ZmTextCursor(value), 0}};
  std::vector<Node*> open;  // visited, and it is not known yet with which ones they are in a circle
  while (!path.empty()) {
    Node* from = path.back().node;
    if (Node* to = edge(path.back())) {
      if (to->order <= before) {
        to->order = to->low = ++visits_;
        open.push_back(to);
        path.push_back({to, to->section, ZmTextCursor(zm_view(*to->value)), 0});
      } else if (from) {
        from->low = std::min(from->low, to->low);
        if (from == to) join(*from, *from);
      }
      continue;
    }
    path.pop_back();
    if (!from) continue;
    if (Node* above = path.back().node) above->low = std::min(above->low, from->low);
    if (from->low == from->order) close(*from, open);
  }
}

// The next option that must be expanded for this one.
ZmConfigExpander::Node* ZmConfigExpander::edge(Reading& reading) {
  while (!reading.in.eof()) {
    const ZmConfigPiece piece = scope_.next(reading.in, reading.self);
    if (!piece.value || !piece.qualified || cut(reading.node, *piece.value)) continue;
    if (!zm_has_reference(zm_view(*piece.value))) continue;
    Node& to = node(piece);
    if (!stands(to)) return &to;
  }
  return nullptr;
}

// All that are open from this one on lead to each other.
void ZmConfigExpander::close(Node& first, std::vector<Node*>& open) {
  for (Node* node = nullptr; node != &first;) {
    node = open.back();
    open.pop_back();
    node->low = kEver;
    if (node != &first) join(*node, first);
  }
}

// Makes one circle of those that the two are in; it has not been named yet.
void ZmConfigExpander::join(Node& node, Node& with) {
  if (!with.circle) with.circle = &with;
  if (!node.circle) node.circle = &node;
  Node* one = circle(with);
  circle(node)->circle = one;
  one->named = false;
}

// The one that stands for the circle; null when it is in none.
ZmConfigExpander::Node* ZmConfigExpander::circle(Node& node) {
  if (!node.circle) return nullptr;
  Node* at = &node;
  while (at->circle != at) at = at->circle = at->circle->circle;
  return at;
}

// An option that has no node yet has not been met by any search, so it is in no circle.
// Whether both options are in one circle.
bool ZmConfigExpander::cut(Node* from, const ZmString& to) {
  if (!from || !from->circle) return false;
  const auto met = nodes_.find(&to);
  return met != nodes_.end() && circle(*from) == circle(met->second);
}

// By the place of the text: a section keeps its values where they are while a reading expands them,
// and a map that grows does not move its nodes, which lead to each other.
ZmConfigExpander::Node& ZmConfigExpander::node(const ZmConfigPiece& piece) {
  const auto [at, made] = nodes_.try_emplace(piece.value);
  Node& node = at->second;
  if (made) {
    node.section = piece.section;
    node.label = piece.label;
    node.value = piece.value;
  }
  return node;
}

// What is too long for a text fails before memory for it is asked for.
void ZmConfigExpander::append(std::string_view text) {
  if (text.size() >= INT_MAX - (out_.size() - start_)) throw std::bad_alloc();
  out_ += text;
}

// What the reference gives is told where it is known already; of an option that has to be expanded
// first the observer learns it by leave().
void ZmConfigExpander::tell(Reading& reading, const ZmConfigPiece& piece, bool circle) {
  std::string_view result = piece.text;
  bool nested = false;
  if (piece.value && !circle) {
    result = zm_view(*piece.value);
    if (piece.qualified && zm_has_reference(result)) {
      const Node& to = node(piece);
      nested = !stands(to);
      result = nested ? "" : std::string_view(out_).substr(to.start, to.length);
    }
  }
  const ZmString* option = reading.node ? reading.node->value : option_;
  observer_->use({option, reading.self, scope_.name, reading.told++, chain_.size() - 1, piece,
                  circle, nested, result});
}
