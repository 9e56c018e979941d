// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/key_types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "check/uncontested_nodes.h"
#include "tool/quoted.h"

namespace ostrafel {

namespace {

// What is known of a key that holds one kind and should hold the other as well.
struct Clash {
  std::optional<Place> first;
  bool is_array = false;  // the first value
  bool is_told = false;
};
using Clashes = std::unordered_map<std::string, Clash>;

// Calls take with each object and array, of all documents, whose members or elements are written.
template <typename Take>
void ForEachWritten(const Survey& survey, const Take& take) {
  for (std::size_t file = 0; file < survey.files.size(); ++file) {
    const std::optional<Subject> subject = ReadSubject(survey, file);
    if (!subject) continue;
    const std::vector<bool> is_stored = UncontestedNodes(survey, *subject);
    for (std::size_t i = 0; i < subject->outline.size(); ++i) {
      const Node& node = subject->outline[i];
      const bool has_key = node.kind == NodeKind::kObject || node.kind == NodeKind::kArray;
      const std::size_t size = json_object_size(node.value) + json_array_size(node.value);
      if (has_key && size != 0 && is_stored[i]) take(*subject, i);
    }
  }
}

// The keys that hold the other kind than a value which is written to them.
Clashes FindClashes(const Survey& survey) {
  Clashes clashes;
  ForEachWritten(survey, [&](const Subject& subject, std::size_t node) {
    const Node& written = subject.outline[node];
    const auto found = survey.store.keys.find(written.key);
    if (found == survey.store.keys.end()) return;
    const bool is_array = written.kind == NodeKind::kArray;
    if (is_array != std::holds_alternative<List>(found->second)) clashes[written.key];
  });
  return clashes;
}

const char* NameOf(bool is_array) { return is_array ? "an array" : "an object"; }

Finding FindingOf(const Clash& clash, Place place, const std::string& key) {
  const std::string first = NameOf(clash.is_array);
  const std::string second = NameOf(!clash.is_array);
  return {RuleId::kLoadKeyType,
          std::move(place),
          key,
          second + " is stored under " + Quoted(key) + ", where " + first +
              " is stored as well, which the store refuses, so that the load fails or loses values",
          {{*clash.first, first + " that is stored there"}}};
}

}  // namespace

void CheckKeyTypes(const Survey& survey, Findings* findings) {
  if (!survey.is_refused) return;
  Clashes clashes = FindClashes(survey);
  ForEachWritten(survey, [&](const Subject& subject, std::size_t node) {
    const Node& written = subject.outline[node];
    const auto found = clashes.find(written.key);
    if (found == clashes.end() || found->second.is_told) return;
    Clash& clash = found->second;
    const bool is_array = written.kind == NodeKind::kArray;
    Place place = PlaceOf(survey, subject, node);
    if (!clash.first) {
      clash.first = std::move(place);
      clash.is_array = is_array;
    } else if (clash.is_array != is_array) {
      clash.is_told = true;
      findings->push_back(FindingOf(clash, std::move(place), written.key));
    }
  });
}

}  // namespace ostrafel
