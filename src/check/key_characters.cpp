// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/key_characters.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "tool/quoted.h"

namespace ostrafel {

namespace {

constexpr const char* kGlobCharacters = "*?[\\";

// Orders texts so that what begins with a text and one of the separators comes right after it.
class SeparatorsFirst {
 public:
  explicit SeparatorsFirst(std::string_view separators) : separators_(separators) {}

  bool operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char x, char y) { return Rank(x) < Rank(y); });
  }

  /// True when text begins with start and a separator.
  [[nodiscard]] bool GoesOn(std::string_view text, std::string_view start) const {
    return text.size() > start.size() && text.substr(0, start.size()) == start &&
           separators_.find(text[start.size()]) != std::string_view::npos;
  }

 private:
  [[nodiscard]] std::size_t Rank(char c) const {
    const std::size_t found = separators_.find(c);
    return found != std::string_view::npos ? found
                                           : separators_.size() + static_cast<unsigned char>(c);
  }

  std::string_view separators_;
};

// What the first glob character of the text makes of a search for it.
std::string WhatIsConfused(const std::string& text) {
  const char glob = text[text.find_first_of(kGlobCharacters)];
  const std::string searches = " where an update searches for " + Quoted(text) + ", so it ";
  switch (glob) {
    case '*':
      return "\"*\" stands for any characters" + searches + "finds others as well";
    case '?':
      return "\"?\" stands for any one character" + searches + "finds others as well";
    case '[':
      return "\"[\" begins a choice of characters" + searches + "finds others instead";
    default:
      return R"("\" takes its meaning from the character after it)" + searches +
             "finds others instead";
  }
}

bool HasGlob(std::string_view text) {
  return text.find_first_of(kGlobCharacters) != std::string_view::npos;
}

// The stored nodes whose names pass the test.
template <typename Test>
std::vector<std::size_t> NamedNodes(const Subject& subject, const std::vector<bool>& is_stored,
                                    const Test& test) {
  std::vector<std::size_t> nodes;
  for (std::size_t i = 1; i < subject.outline.size(); ++i) {
    const char* name = subject.outline[i].name;
    if (name != nullptr && is_stored[i] && test(name)) nodes.push_back(i);
  }
  return nodes;
}

using NodesByName = std::map<std::string_view, std::size_t, SeparatorsFirst>;

// Appends what goes on after a blank among the members of one object.
void CheckBlanksIn(const Survey& survey, const Subject& subject, const NodesByName& members,
                   Findings* findings) {
  std::vector<NodesByName::const_iterator> shorter;  // each the beginning of the next
  for (auto member = members.begin(); member != members.end(); ++member) {
    const auto goes_on = [&](NodesByName::const_iterator start) {
      return members.key_comp().GoesOn(member->first, start->first);
    };
    while (!shorter.empty() && !goes_on(shorter.back())) shorter.pop_back();
    if (!shorter.empty()) {
      const std::string start(shorter.back()->first);
      const std::size_t parent = subject.outline[member->second].parent;
      findings->push_back({RuleId::kKeyBlank,
                           PlaceOf(survey, subject, member->second, Spot::kName),
                           subject.outline[parent].key,
                           "an update of " + Quoted(start) + " also takes the links of " +
                               Quoted(std::string(member->first)) +
                               " for its own, because this name is the other and goes on after a "
                               "blank",
                           {{PlaceOf(survey, subject, shorter.back()->second, Spot::kName),
                             "the name that ends at the blank"}}});
    }
    shorter.push_back(member);
  }
}

}  // namespace

void CheckGlobsInKeys(const Survey& survey, Findings* findings) {
  const SeparatorsFirst order("/#");
  std::vector<std::string_view> keys;
  for (const auto& [key, claims] : survey.claims) {
    if (HasGlob(key)) keys.emplace_back(key);
  }
  std::sort(keys.begin(), keys.end(), order);
  std::string above;  // the last one that is reported
  for (const std::string_view view : keys) {
    const std::string key(view);
    if (!above.empty() && order.GoesOn(key, above)) continue;
    above = key;
    findings->push_back({RuleId::kKeyGlob, PlaceOf(survey, survey.claims.at(key).front()), key,
                         WhatIsConfused(key)});
  }
}

void CheckGlobsInNames(const Survey& survey, const Subject& subject,
                       const std::vector<bool>& is_stored, Findings* findings) {
  for (const std::size_t node : NamedNodes(subject, is_stored, HasGlob)) {
    findings->push_back({RuleId::kKeyGlob, PlaceOf(survey, subject, node, Spot::kName),
                         subject.outline[subject.outline[node].parent].key,
                         WhatIsConfused(subject.outline[node].name)});
  }
}

void CheckBlanksInNames(const Survey& survey, const Subject& subject,
                        const std::vector<bool>& is_stored, Findings* findings) {
  const auto has_blank = [](std::string_view name) {
    return name.find(' ') != std::string_view::npos;
  };
  const std::vector<std::size_t> nodes = NamedNodes(subject, is_stored, has_blank);
  if (nodes.empty()) return;
  std::map<std::size_t, NodesByName> objects;  // those that hold such a name
  for (const std::size_t node : nodes) {
    objects.emplace(subject.outline[node].parent, SeparatorsFirst(" "));
  }
  const auto any = [](std::string_view) { return true; };
  for (const std::size_t node : NamedNodes(subject, is_stored, any)) {
    const auto object = objects.find(subject.outline[node].parent);
    if (object != objects.end()) object->second.emplace(subject.outline[node].name, node);
  }
  for (const auto& [object, members] : objects) {
    CheckBlanksIn(survey, subject, members, findings);
  }
}

}  // namespace ostrafel
