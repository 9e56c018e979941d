// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/redfish_rules.h"

#include <cstddef>
#include <string_view>

#include "check/redfish_documents.h"
#include "check/redfish_references.h"
#include "layout/resource_id.h"
#include "text/json_pointer.h"

namespace ostrafel {

namespace {

constexpr const char* kCountMember = "Members@odata.count";

void Add(RuleId rule, const Survey& survey, const Subject& subject, const std::string& pointer,
         const std::string& message, Findings* findings) {
  findings->push_back(
      {rule, PlaceOf(survey, subject, pointer), survey.files[subject.file].key, message});
}

// --- redfish-count -------------------------------------------------------------------------------

// What is wrong with the count of an object; empty when nothing is.
std::string WrongCount(const json_t* object) {
  const json_t* members = MembersOf(object);
  const json_t* count = json_object_get(object, kCountMember);
  if (members == nullptr || count == nullptr) return "";
  const std::string size = std::to_string(json_array_size(members));
  const std::string start = std::string("\"") + kCountMember + "\" ";
  if (!json_is_integer(count)) return start + "is no integer; Members has " + size;
  const json_int_t stated = json_integer_value(count);
  const auto actual = static_cast<json_int_t>(json_array_size(members));
  if (stated == actual) return "";
  // Of a collection that goes on in another document, only the first members are here.
  const bool goes_on = json_object_get(object, "Members@odata.nextLink") != nullptr;
  if (goes_on && stated > actual) return "";
  return start + "is " + std::to_string(stated) + ", but Members has " + size;
}

void CheckCounts(const Survey& survey, const Subject& subject, Findings* findings) {
  for (std::size_t i = 0; i < subject.outline.size(); ++i) {
    if (subject.outline[i].kind != NodeKind::kObject) continue;
    const std::string wrong = WrongCount(subject.outline[i].value);
    if (wrong.empty()) continue;
    const std::string pointer = ChildPointer(PointerOf(subject.outline, i), kCountMember);
    Add(RuleId::kRedfishCount, survey, subject, pointer, wrong, findings);
  }
}

// --- redfish-member-id ---------------------------------------------------------------------------

// True when uri is what a file's resource may be called: its key or, because a wrong key is a
// finding of its own, the one of its folder.
bool IsOf(const TreeFile& file, std::string_view uri) {
  const std::string plain = WithoutLastSlash(uri);
  return plain == WithoutLastSlash(file.key) || plain == WithoutLastSlash(file.listed_key);
}

void CheckMemberIds(const Survey& survey, const Subject& subject, Findings* findings) {
  const TreeFile& file = survey.files[subject.file];
  for (std::size_t i = 0; i < subject.outline.size(); ++i) {
    const Node& node = subject.outline[i];
    if (!node.has_own_id) continue;
    const std::size_t hash = node.key.find('#');
    if (hash == std::string::npos) continue;
    const std::string pointer = PointerOf(subject.outline, i);
    const bool is_here = hash == 0 || IsOf(file, node.key.substr(0, hash));
    const std::string fragment = node.key.substr(hash + 1);
    if (is_here && DecodePercents(fragment).value_or(fragment) == pointer) continue;
    Add(RuleId::kRedfishMemberId, survey, subject, ChildPointer(pointer, IdMember),
        "this object says that it is \"" + node.key + "\", but it stands at \"" +
            WithoutLastSlash(file.key) + "#" + pointer + "\"",
        findings);
  }
}

// --- redfish-action-target -----------------------------------------------------------------------

struct Actions {
  const json_t* object;  ///< Borrowed.
  std::string pointer;   ///< Of the object.
  bool is_oem;
};

// True when target is where an action of the name, without "#", is posted to.
bool IsTarget(const TreeFile& file, const Actions& actions, const std::string& name,
              const json_t* target) {
  if (!json_is_string(target)) return false;
  const std::string text = json_string_value(target);
  const auto ends_with = [&](const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0 &&
           IsOf(file, text.substr(0, text.size() - end.size()));
  };
  return ends_with("/Actions/" + name) || (actions.is_oem && ends_with("/Actions/Oem/" + name));
}

void CheckTargets(const Survey& survey, const Subject& subject, const Actions& actions,
                  Findings* findings) {
  const TreeFile& file = survey.files[subject.file];
  // jansson's iterators take no const object, though they change none.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
  auto* object = const_cast<json_t*>(actions.object);
  for (void* member = json_object_iter(object); member != nullptr;
       member = json_object_iter_next(object, member)) {
    const std::string name = json_object_iter_key(member);
    const json_t* target = json_object_get(json_object_iter_value(member), "target");
    if (name.compare(0, 1, "#") != 0 || target == nullptr) continue;
    const std::string action = name.substr(1);
    if (IsTarget(file, actions, action, target)) continue;
    std::string wanted = WithoutLastSlash(file.key);
    wanted.append(actions.is_oem ? "/Actions/Oem/" : "/Actions/").append(action);
    std::string message = "the target of the action ";
    message.append(action).append(" should be \"").append(wanted).append("\"");
    Add(RuleId::kRedfishActionTarget, survey, subject,
        ChildPointer(ChildPointer(actions.pointer, name), "target"), message, findings);
  }
}

void CheckActions(const Survey& survey, const Subject& subject, Findings* findings) {
  const json_t* actions = json_object_get(subject.root.get(), "Actions");
  CheckTargets(survey, subject, {actions, "/Actions", false}, findings);
  CheckTargets(survey, subject, {json_object_get(actions, "Oem"), "/Actions/Oem", true}, findings);
}

// --- redfish-error-body, redfish-required --------------------------------------------------------

// The names of the members that every resource has and root lacks, as a list to read; empty when
// it lacks none. Collections have no Id.
std::string MissingMembers(const json_t* root) {
  const bool is_collection = json_is_array(json_object_get(root, "Members"));
  std::string missing;
  for (const std::string_view name : {IdMember, "@odata.type", "Id", "Name"}) {
    if (json_object_get(root, name.data()) != nullptr || (is_collection && name == "Id")) continue;
    missing += missing.empty() ? "" : ", ";
    missing.append("\"").append(name).append("\"");
  }
  return missing;
}

void CheckBody(const Survey& survey, const Subject& subject, Findings* findings) {
  const json_t* root = subject.root.get();
  if (IsErrorBody(root)) {
    Add(RuleId::kRedfishErrorBody, survey, subject, "/error",
        "this file holds the answer to a request that failed, not a resource", findings);
    return;
  }
  if (IsServiceDocument(root, survey.files[subject.file].key)) return;
  const std::string missing = MissingMembers(root);
  if (missing.empty()) return;
  Add(RuleId::kRedfishRequired, survey, subject, "", "this resource lacks " + missing, findings);
}

}  // namespace

void CheckRedfishRulesIn(const Survey& survey, const Subject& subject, Findings* findings) {
  CheckCounts(survey, subject, findings);
  CheckMemberIds(survey, subject, findings);
  CheckActions(survey, subject, findings);
  CheckBody(survey, subject, findings);
}

void CheckRedfishRules(const Survey& survey, Findings* findings) {
  CheckReferences(survey, findings);
}

}  // namespace ostrafel
