// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <optional>
#include <utility>

#include "text/json_pointer.h"
#include "text/json_positions.h"
#include "text/json_walk.h"
#include "text/position_counter.h"

namespace ostrafel {

namespace {

constexpr std::size_t kNothing = static_cast<std::size_t>(-1);

// A value that is wanted, or that holds one.
struct WantedNode {
  std::string_view pointer;
  bool is_wanted = false;
  bool is_seen = false;
  std::map<std::string, std::size_t, std::less<>> children = {};  // by name or index
};

// The values that are wanted, as a tree. Node 0 is the root.
class WantedTree {
 public:
  // The pointers outlive the tree.
  explicit WantedTree(const std::set<std::string>& pointers) {
    for (const std::string& pointer : pointers) Add(pointer);
  }

  WantedNode& operator[](std::size_t node) { return nodes_[node]; }

  [[nodiscard]] std::size_t Find(std::size_t node, std::string_view name) const {
    const auto found = nodes_[node].children.find(name);
    return found == nodes_[node].children.end() ? kNothing : found->second;
  }

 private:
  void Add(std::string_view pointer) {
    std::size_t node = 0;
    for (std::size_t end = 0; end < pointer.size();) {
      if (pointer[end] != '/') return;
      const std::size_t start = end + 1;
      end = std::min(pointer.find('/', start), pointer.size());
      std::optional<std::string> name = NameOfStep(pointer.substr(start, end - start));
      if (!name) return;
      const auto [child, is_new] =
          nodes_[node].children.try_emplace(std::move(*name), nodes_.size());
      node = child->second;
      if (is_new) nodes_.push_back({pointer.substr(0, end)});
    }
    nodes_[node].is_wanted = true;
  }

  std::vector<WantedNode> nodes_ = {{}};
};

// Follows the walk down the wanted nodes, and passes over all else.
class Locator : public JsonVisitor {
 public:
  Locator(std::string_view text, const std::set<std::string>& pointers)
      : counter_(text), wanted_(pointers) {}

  void OnName(const std::string& name, std::size_t offset) override {
    const std::size_t around = open_.back().node;
    next_ = around == kNothing ? kNothing : wanted_.Find(around, name);
    name_offset_ = offset;
  }

  void OnScalar(std::size_t offset) override { (void)Take(offset); }

  void OnOpen(bool is_array, std::size_t offset) override {
    const std::size_t node = Take(offset);
    open_.push_back({node, is_array});
  }

  void OnClose() override { open_.pop_back(); }

  std::map<std::string, ValuePosition> positions;

 private:
  struct Open {
    std::size_t node;
    bool is_array;
    std::size_t elements = 0;
  };

  // Returns the node of the value at offset.
  std::size_t Take(std::size_t offset) {
    const bool is_member = !open_.empty() && !open_.back().is_array;
    const std::size_t node = is_member ? next_ : NodeOfElement();
    if (node == kNothing) return kNothing;
    if (wanted_[node].is_seen) Forget(wanted_[node].pointer);
    wanted_[node].is_seen = true;
    if (wanted_[node].is_wanted) {
      const Position name = counter_.At(is_member ? name_offset_ : offset);
      positions[std::string(wanted_[node].pointer)] = {name, counter_.At(offset)};
    }
    return node;
  }

  // Of an element or the root.
  std::size_t NodeOfElement() {
    if (open_.empty()) return 0;
    Open& array = open_.back();
    if (array.node == kNothing) return kNothing;
    return wanted_.Find(array.node, std::to_string(array.elements++));
  }

  // Drops what an overwritten value holds: the pointers that begin with its own and a slash.
  void Forget(std::string_view pointer) {
    std::string bound(pointer);
    positions.erase(bound);
    const auto first = positions.lower_bound(bound + '/');
    positions.erase(first, positions.lower_bound(bound + static_cast<char>('/' + 1)));
  }

  PositionCounter counter_;
  WantedTree wanted_;
  std::vector<Open> open_;
  std::size_t next_ = kNothing;  // the node of the member whose name was read
  std::size_t name_offset_ = 0;
};

}  // namespace

std::map<std::string, ValuePosition> LocateValues(std::string_view text,
                                                  const std::set<std::string>& pointers) {
  text = WithoutByteOrderMark(text);
  Locator locator(text, pointers);
  WalkJson(text, &locator);
  return std::move(locator.positions);
}

}  // namespace ostrafel
