// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/update_reasons.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "layout/layout.h"
#include "memory/glob.h"
#include "tool/quoted.h"

namespace ostrafel {

namespace {

// How far above a lost key an array is looked for: keys with more names are nobody's. It bounds the
// work that a key with thousands of slashes can make.
constexpr std::size_t kLevels = 64;

// So many arrays with glob characters in their keys are tried on every loss.
constexpr std::size_t kMaxGlobs = 100;

// A value whose update removes, or may remove, others.
struct Remover {
  LoadOrder at;
  Place place;
  NodeKind kind;
  std::string key;  ///< Its own or, of a scalar or link, the one that it would have as an object.
};

// What it removes by -> the removers, in the order of the load. Empty where only wanted.
using Removers = std::unordered_map<std::string, std::vector<Remover>>;

// A key less its last slash and what follows; false when it has none.
bool GoUp(std::string* key) {
  const std::size_t slash = key->rfind('/');
  if (slash == std::string::npos) return false;
  key->erase(slash);
  return true;
}

// Stands for a member or an element of what is stored at key. No key holds a NUL.
std::string MemberOf(const std::string& key, std::string_view name) {
  return std::string(key).append(1, '\0').append(name);
}

// The names of members whose update removes a lost link: those that its own begins with, up to a
// blank. Of a lost element: its text, which may be the index of another.
std::vector<std::string> NamesBehind(const Loss& loss) {
  if (loss.record.parent == ParentKind::kList) return {loss.record.value};
  std::vector<std::string> names;
  if (loss.kind != NodeKind::kLink) return names;
  for (std::size_t blank = loss.name.find(' ');
       blank != std::string::npos && names.size() < kLevels;
       blank = loss.name.find(' ', blank + 1)) {
    names.push_back(loss.name.substr(0, blank));
  }
  return names;
}

// Everything that a remover of one of the losses may go by.
Removers WantedFor(const std::vector<Loss>& losses) {
  Removers wanted;
  for (const Loss& loss : losses) {
    std::string key = loss.key;
    for (std::size_t level = 0; level < kLevels && wanted.try_emplace(key).second && GoUp(&key);)
      ++level;
    if (loss.is_key) continue;
    for (const std::string& name : NamesBehind(loss)) wanted.try_emplace(MemberOf(loss.key, name));
  }
  return wanted;
}

// Collects the removers in one document after the other.
class Collection {
 public:
  Collection(const Survey& survey, Removers wanted)
      : survey_(survey), removers_(std::move(wanted)) {}

  void Take(const Subject& subject) {
    AddIfWanted(subject, 0, subject.outline[0].key, subject.outline[0].key);
    for (std::size_t i = 1; i < subject.outline.size(); ++i) {
      const Node& node = subject.outline[i];
      const Node& parent = subject.outline[node.parent];
      const bool is_element = parent.kind == NodeKind::kArray;
      const std::string name = is_element ? std::to_string(node.index) : node.name;
      const bool has_key = node.kind == NodeKind::kArray || node.kind == NodeKind::kObject;
      const std::string key = has_key ? node.key : DerivedKey(parent.key, name);
      AddIfWanted(subject, i, key, key);
      if (!is_element || node.kind != NodeKind::kScalar) {
        AddIfWanted(subject, i, MemberOf(parent.key, name), key);
      }
      if (node.kind == NodeKind::kArray) AddGlob(subject, i);
    }
  }

  // The first remover that goes by name, comes after the loss and fits; null when there is none.
  template <typename Fits>
  [[nodiscard]] const Remover* Find(const Loss& loss, const std::string& name,
                                    const Fits& fits) const {
    const auto found = removers_.find(name);
    if (found == removers_.end()) return nullptr;
    const auto& removers = found->second;
    const auto is_before = [](const LoadOrder& at, const Remover& remover) {
      return at < remover.at;
    };
    const auto later = std::upper_bound(removers.begin(), removers.end(), loss.at, is_before);
    const auto remover = std::find_if(later, removers.end(), fits);
    return remover == removers.end() ? nullptr : &*remover;
  }

  // The array with a glob for a key that removes what is lost; null when there is none.
  [[nodiscard]] const Remover* FindGlob(const Loss& loss) const {
    for (const Remover& remover : globs_) {
      if (remover.at > loss.at && MatchesGlob(SubtreePattern(remover.key), loss.key)) {
        return &remover;
      }
    }
    return nullptr;
  }

 private:
  void AddIfWanted(const Subject& subject, std::size_t index, const std::string& name,
                   const std::string& key) {
    const auto found = removers_.find(name);
    if (found == removers_.end() || !IsStored(survey_, subject, subject.outline[index].parent)) {
      return;
    }
    found->second.push_back(RemoverAt(subject, index, key));
  }

  void AddGlob(const Subject& subject, std::size_t index) {
    const std::string& key = subject.outline[index].key;
    if (globs_.size() == kMaxGlobs || LiteralStart(key).size() == key.size()) return;
    globs_.push_back(RemoverAt(subject, index, key));
  }

  [[nodiscard]] Remover RemoverAt(const Subject& subject, std::size_t index,
                                  const std::string& key) const {
    return {
        {subject.file, index}, PlaceOf(survey_, subject, index), subject.outline[index].kind, key};
  }

  const Survey& survey_;
  Removers removers_;
  std::vector<Remover> globs_;
};

// True when the update of the remover removes what is stored at its key, or below it: it takes any
// list, and a hash that is to be something else, for what the value was before.
bool IsKeyRemover(const Survey& survey, const Remover& remover, bool is_below) {
  const auto found = survey.store.keys.find(remover.key);
  if (found == survey.store.keys.end()) return false;
  const List* list = std::get_if<List>(&found->second);
  if (list == nullptr) return remover.kind != NodeKind::kObject;
  return !is_below || IsReferenceRecord(list->front());
}

// Of a record that is lost since remover, of that name, goes by what the record reads.
Reason ReasonBeside(const Loss& loss, const std::string& name, const Remover& remover) {
  if (loss.record.parent == ParentKind::kList) {
    return {"because the update of element " + name + " removes all that read " + name,
            {{remover.place, "element " + name}},
            loss.key};
  }
  return {"because the update of the member " + Quoted(name) +
              " removes the links of all members whose names begin with " + Quoted(name + " "),
          {{remover.place, "the member " + Quoted(name)}},
          loss.key};
}

// Of a record: it stood beside what removes it, in a hash or a list that stays.
std::optional<Reason> ReasonInKey(const Collection& collection, const Loss& loss) {
  for (const std::string& name : NamesBehind(loss)) {
    const auto is_any = [](const Remover& /*remover*/) { return true; };
    const Remover* remover = collection.Find(loss, MemberOf(loss.key, name), is_any);
    if (remover == nullptr) continue;
    return ReasonBeside(loss, name, *remover);
  }
  const auto is_writer = [](const Remover& remover) {
    return remover.kind == NodeKind::kObject || remover.kind == NodeKind::kArray;
  };
  const Remover* writer = collection.Find(loss, loss.key, is_writer);
  if (writer == nullptr) return std::nullopt;
  return Reason{"because another value is written to its key " + Quoted(loss.key) +
                    " after it, and the update removes what that one may have held",
                {{writer->place, "what is written to the same key"}},
                loss.key};
}

Reason ReasonByRemover(const Remover& remover, bool is_below) {
  const std::string key = Quoted(remover.key);
  if (is_below && remover.kind == NodeKind::kArray) {
    return {"because its key begins like that of the array " + key +
                ", whose update removes everything below itself",
            {{remover.place, "the array whose update removes it"}},
            remover.key};
  }
  const bool has_key = remover.kind == NodeKind::kArray || remover.kind == NodeKind::kObject;
  return {std::string("because a value that comes after it ") +
              (has_key ? "has the key " + key : "would have the key " + key + " as an object") +
              ", and its update removes what lies there",
          {{remover.place, "the value whose update removes it"}},
          remover.key};
}

Reason ReasonOf(const Survey& survey, const Collection& collection, const Loss& loss) {
  if (!loss.is_key) {
    const std::optional<Reason> reason = ReasonInKey(collection, loss);
    if (reason) return *reason;
  }
  std::string key = loss.key;
  std::size_t level = 0;
  do {
    const bool is_below = level != 0;
    const Remover* remover = collection.Find(loss, key, [&](const Remover& candidate) {
      return IsKeyRemover(survey, candidate, is_below);
    });
    if (remover != nullptr) return ReasonByRemover(*remover, is_below);
  } while (++level < kLevels && GoUp(&key));
  const Remover* remover = collection.FindGlob(loss);
  if (remover != nullptr) return ReasonByRemover(*remover, true);
  return {"because it does not write it again"};
}

}  // namespace

std::vector<Reason> ReasonsOf(const Survey& survey, const std::vector<Loss>& losses) {
  std::vector<Reason> reasons;
  if (losses.empty()) return reasons;
  Collection collection(survey, WantedFor(losses));
  for (std::size_t i = 0; i < survey.files.size(); ++i) {
    const std::optional<Subject> subject = ReadSubject(survey, i);
    if (subject) collection.Take(*subject);
  }
  reasons.reserve(losses.size());
  for (const Loss& loss : losses) reasons.push_back(ReasonOf(survey, collection, loss));
  return reasons;
}

}  // namespace ostrafel
