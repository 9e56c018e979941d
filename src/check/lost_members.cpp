// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/lost_members.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "document/file_inclusion.h"
#include "document/json_file.h"
#include "layout/resource_id.h"
#include "text/json_pointer.h"

namespace ostrafel {

namespace {

// A field of a hash -> the last node of the document that is written to it.
using Writers = std::unordered_map<std::string, std::size_t>;

// A walk through one document beside what is stored of it.
struct Walk {
  const Survey& survey;
  const Subject& subject;
  const std::vector<bool>& is_stored;
  const Stops& stops;
  Findings* findings;
  std::vector<const Stored*> at_key;  // of objects and arrays; null when nothing is stored there
  std::vector<bool> is_settled;       // what the node holds needs no look
  std::size_t member = 0;             // of the root, which holds the node or is it
  Writers writers = {};               // empty until they are needed
};

const Node& NodeAt(const Walk& walk, std::size_t node) { return walk.subject.outline[node]; }

const Stored* Find(const Server& server, const std::string& key) {
  const auto found = server.keys.find(key);
  return found == server.keys.end() ? nullptr : &found->second;
}

// The stored value of a field; null when the hash has none.
const std::string* FindField(const Stored* stored, const std::string& name) {
  const Hash* hash = std::get_if<Hash>(stored);
  if (hash == nullptr) return nullptr;
  const auto found = hash->find(name);
  return found == hash->end() ? nullptr : &found->second;
}

// True when the record of the node is stored as it should be.
bool IsRecorded(const Walk& walk, std::size_t node) {
  const Stored* stored = walk.at_key[NodeAt(walk, node).parent];
  const Record record = RecordOf(walk.subject.outline, node);
  if (record.parent == ParentKind::kHash) {
    const std::string* value = FindField(stored, record.field);
    return value != nullptr && *value == record.value;
  }
  const List* list = std::get_if<List>(stored);
  const std::size_t index = NodeAt(walk, node).index;
  return list != nullptr && index < list->size() && (*list)[index] == record.value;
}

std::string NameOf(const Node& node) {
  if (node.name != nullptr) return "the member \"" + std::string(node.name) + "\"";
  return "element " + std::to_string(node.index) + " of the array";
}

// Names a field among those of all keys. Neither has a NUL in it.
std::string FieldName(const std::string& key, const std::string& field) {
  return key + '\0' + field;
}

void FindWriters(Walk* walk) {
  const Outline& outline = walk->subject.outline;
  for (std::size_t i = 1; i < outline.size(); ++i) {
    const Node& parent = outline[outline[i].parent];
    if (parent.kind == NodeKind::kArray || !walk->is_stored[outline[i].parent]) continue;
    walk->writers[FieldName(parent.key, RecordOf(outline, i).field)] = i;
  }
}

// A node whose field holds the value of another.
Finding OverwrittenFinding(Walk* walk, std::size_t node, Finding finding) {
  if (walk->writers.empty()) FindWriters(walk);
  const Outline& outline = walk->subject.outline;
  const std::string field = RecordOf(outline, node).field;
  finding.message += ", since another value, which has the same place in the store, replaces it";
  const auto writer = walk->writers.find(FieldName(outline[outline[node].parent].key, field));
  if (writer != walk->writers.end() && writer->second != node) {
    finding.related.push_back(
        {PlaceOf(walk->survey, walk->subject, writer->second), "the value that is stored"});
  }
  return finding;
}

bool IsWithin(const Outline& outline, std::size_t node, std::size_t around) {
  while (node > around) node = outline[node].parent;
  return node == around;
}

// The "@odata.id" that keeps the node from being written; 0 when there is none.
std::size_t StopBefore(const Walk& walk, std::size_t node) {
  const auto stop = walk.stops.find(walk.member);
  if (stop == walk.stops.end()) return 0;
  // An array is recorded after its elements.
  const bool is_stopped = stop->second < node || IsWithin(walk.subject.outline, stop->second, node);
  return is_stopped ? stop->second : 0;
}

Finding StoppedFinding(const Walk& walk, std::size_t node, std::size_t stop, Finding finding) {
  finding.message += stop < node ? ", since an object before it has an \"@odata.id\" that is no "
                                   "string, which ends all that is around that object"
                                 : ", since an object in it has an \"@odata.id\" that is no string";
  Place id = PlaceOf(walk.survey, walk.subject, stop);
  id.pointer = ChildPointer(*id.pointer, IdMember);
  finding.related.push_back({std::move(id), "the \"@odata.id\" that is no string"});
  return finding;
}

void ReportLost(Walk* walk, std::size_t node) {
  const std::size_t parent = NodeAt(*walk, node).parent;
  Finding finding = {RuleId::kLoadLostMember, PlaceOf(walk->survey, walk->subject, node),
                     NodeAt(*walk, parent).key, NameOf(NodeAt(*walk, node)) + " is not stored"};
  const std::size_t stop = StopBefore(*walk, node);
  const bool is_field = NodeAt(*walk, parent).kind == NodeKind::kObject;
  const auto field = [&] { return RecordOf(walk->subject.outline, node).field; };
  if (stop != 0) {
    finding = StoppedFinding(*walk, node, stop, std::move(finding));
  } else if (is_field && FindField(walk->at_key[parent], field()) != nullptr) {
    finding = OverwrittenFinding(walk, node, std::move(finding));
  } else if (walk->survey.is_refused) {
    return;  // What the store refused took others with it: the refused key is told.
  }
  walk->findings->push_back(std::move(finding));
}

std::string SharedListMessage(const std::string& key) {
  return "the elements of this array are stored in one list with those of another one, since both "
         "go to " +
         key;
}

// Looks up what is stored of an object's or array's own. Returns false when it needs no look.
bool LookUp(Walk* walk, std::size_t node) {
  const Node& self = NodeAt(*walk, node);
  const bool is_array = self.kind == NodeKind::kArray;
  const bool has_key = is_array || self.kind == NodeKind::kObject;
  const std::size_t size = json_object_size(self.value) + json_array_size(self.value);
  if (!has_key || !walk->is_stored[node] || size == 0) return false;
  const Stored* stored = Find(walk->survey.store, self.key);
  walk->at_key[node] = stored;
  if (stored == nullptr) return true;
  const List* list = std::get_if<List>(stored);
  if (is_array != (list != nullptr)) return false;  // told as a key of two kinds
  if (list == nullptr || list->size() <= size) return true;
  walk->findings->push_back({RuleId::kLoadLostMember, PlaceOf(walk->survey, walk->subject, node),
                             self.key, SharedListMessage(self.key)});
  return false;
}

}  // namespace

void CheckLostMembers(const Survey& survey, const Subject& subject,
                      const std::vector<bool>& is_stored, const Stops& stops, Findings* findings) {
  const std::size_t size = subject.outline.size();
  Walk walk = {survey,
               subject,
               is_stored,
               stops,
               findings,
               std::vector<const Stored*>(size),
               std::vector<bool>(size)};
  walk.is_settled[0] = !LookUp(&walk, 0);
  for (std::size_t i = 1; i < size; ++i) {
    const Node& node = subject.outline[i];
    if (node.parent == 0) walk.member = i;
    const bool is_told = walk.is_settled[node.parent] || node.kind == NodeKind::kBadId;
    const bool is_lost = !is_told && !IsRecorded(walk, i);
    if (is_lost) ReportLost(&walk, i);
    walk.is_settled[i] = is_told || is_lost || !LookUp(&walk, i);
  }
}

void CheckReplacedMembers(const Survey& survey, const Subject& subject, Findings* findings) {
  const TreeFile& file = survey.files[subject.file];
  if (file.text_path == file.path) return;
  const auto report = [&](const std::string& path, const char* name, const std::string& reason) {
    findings->push_back({RuleId::kLoadLostMember,
                         {path, ChildPointer("", name)},
                         file.key,
                         "the member \"" + std::string(name) + "\" is not stored, " + reason,
                         {{{file.path, ChildPointer("", FileMember)}, "includes the file"}}});
  };
  const auto is_stored = [&](const char* name, const json_t* value) {
    return json_equal(json_object_get(subject.root.get(), name), value) != 0;
  };
  json_t* own = subject.own_root.get();
  for (void* member = json_object_iter(own); member != nullptr;
       member = json_object_iter_next(own, member)) {
    const char* name = json_object_iter_key(member);
    if (std::string_view(name) == IdMember || is_stored(name, json_object_iter_value(member))) {
      continue;
    }
    report(file.path, name,
           "since the members of the included file replace those beside \"&&File\"");
  }
  const JsonFile included = LoadJsonFile(file.text_path.c_str());
  const json_t* next = json_object_get(included.root.get(), FileMember);
  if (next != nullptr && !is_stored(FileMember, next)) {
    report(file.text_path, FileMember, "since an included file includes no other");
  }
}

void MergeSharedLists(Findings* findings) {
  // Key -> the place of its finding; the first array's until there is a second one.
  std::unordered_map<std::string, std::size_t> told;
  std::size_t kept = 0;
  for (Finding& finding : *findings) {
    const bool is_shared = finding.rule == RuleId::kLoadLostMember && finding.key &&
                           finding.message == SharedListMessage(*finding.key);
    const auto [entry, is_new] =
        is_shared ? told.try_emplace(*finding.key, kept) : std::make_pair(told.end(), true);
    if (is_new) {
      if (&(*findings)[kept] != &finding) (*findings)[kept] = std::move(finding);
      ++kept;
      continue;
    }
    Finding& merged = (*findings)[entry->second];
    Place other = std::move(finding.place);
    if (merged.related.empty()) std::swap(other, merged.place);
    merged.related.push_back({std::move(other), "another array of the list"});
  }
  findings->resize(kept);
}

}  // namespace ostrafel
