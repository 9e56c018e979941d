// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/rule.h"

#include <algorithm>
#include <cstddef>

namespace ostrafel {

const char* NameOf(Level level) {
  switch (level) {
    case Level::kError:
      return "error";
    case Level::kWarning:
      return "warning";
    case Level::kNote:
      break;
  }
  return "note";
}

const std::vector<Rule>& Rules() {
  static const std::vector<Rule> rules = {
      {RuleId::kLoadUnreadable, "load-unreadable", Level::kError, true,
       "a folder or a file that cannot be opened or read", ""},
      {RuleId::kLoadSyntax, "load-syntax", Level::kError, true,
       "a file that is not JSON for the loader's parser", ""},
      {RuleId::kLoadNotObject, "load-not-object", Level::kError, true,
       "a file that holds no object", ""},
      {RuleId::kLoadIdType, "load-id-type", Level::kError, true,
       "an \"@odata.id\" that is no string", ""},
      {RuleId::kLoadInclude, "load-include", Level::kError, true,
       "a \"&&File\" that cannot be included", ""},
      {RuleId::kLoadKeyType, "load-key-type", Level::kError, true,
       "a key that would be a hash and a list", ""},
      {RuleId::kLoadLostMember, "load-lost-member", Level::kError, true,
       "a member that is not stored although the load succeeds", ""},
      {RuleId::kLoadNothing, "load-nothing", Level::kWarning, true, "no file of the name anywhere",
       ""},
      {RuleId::kStoreIntegerClamped, "store-integer-clamped", Level::kWarning, true,
       "an integer beyond 32 bits", ""},
      {RuleId::kStoreRealRounded, "store-real-rounded", Level::kWarning, true,
       "a real that loses digits at six places", ""},
      {RuleId::kStoreDuplicateMember, "store-duplicate-member", Level::kWarning, true,
       "the same name twice in an object", ""},
      {RuleId::kStoreReservedType, "store-reserved-type", Level::kNote, true,
       "a reserved \"&&\" member that is no string", ""},
      {RuleId::kKeyClaimedTwice, "key-claimed-twice", Level::kError, true,
       "a key whose members several places write", ""},
      {RuleId::kKeyNotPath, "key-not-path", Level::kWarning, true,
       "a file whose \"@odata.id\" is not the key of its folder", ""},
      {RuleId::kKeyTrailingSlash, "key-trailing-slash", Level::kNote, true,
       "a file whose \"@odata.id\" differs from the key of its folder by a slash at the end", ""},
      {RuleId::kKeyOutsideUri, "key-outside-uri", Level::kWarning, true,
       "a key that a create of the URI does not remove", ""},
      {RuleId::kKeyGlob, "key-glob", Level::kWarning, true,
       "\"*\", \"?\", \"[\" or \"\\\" in a key or a name", ""},
      {RuleId::kKeyCase, "key-case", Level::kWarning, true, "keys that differ in case only", ""},
      {RuleId::kKeyBlank, "key-blank", Level::kNote, true,
       "a name that goes on after a blank beside one that ends there", ""},
      {RuleId::kLinkDangling, "link-dangling", Level::kWarning, true, "a link to no key", ""},
      {RuleId::kLinkFragment, "link-fragment", Level::kWarning, true,
       "a link whose part after \"#\" leads nowhere", ""},
      {RuleId::kLinkUri, "link-uri", Level::kWarning, true,
       "a URI in a member that leads to no key", ""},
      {RuleId::kLinkRepeated, "link-repeated", Level::kNote, true,
       "the same link twice in an array", ""},
      {RuleId::kUpdateLoses, "update-loses", Level::kWarning, true,
       "what an update of the unchanged tree loses",
       "An update removes what the store holds of a value in an older form before it writes the "
       "value again. It cannot tell an older form from another value whose key looks alike: the "
       "update of an array of objects removes every key that begins like the array's, a member "
       "\"A\" removes the links of a member \"A B\", and of two values with one key the later "
       "removes the earlier. What this run had sent before is lost; a load sends what waits "
       "after each 2,000 records, so a small change elsewhere decides what is hit. Create loads "
       "such a tree as it is. Rename one of the values, or load with create."},
      {RuleId::kUpdateSlow, "update-slow", Level::kNote, true,
       "arrays whose update searches all keys",
       "Before an update writes an array that held objects, arrays or links, it asks the server "
       "for all keys below the array. Redis looks at each of its keys for that, those of other "
       "trees included, so the time grows with the number of such arrays times the number of "
       "keys. Nothing is wrong with the tree. Where it matters, load with create, which searches "
       "three times in all."},
      {RuleId::kRedfishCount, "redfish-count", Level::kWarning, true,
       "a Members@odata.count that is not the number of Members",
       "\"Members@odata.count\" says how many members a collection has; clients trust it and "
       "read past the end, or not to the end. It must be an integer, and the size of the array "
       "\"Members\" beside it; larger only when \"Members@odata.nextLink\" names a document with "
       "more of them."},
      {RuleId::kRedfishNotMember, "redfish-not-member", Level::kWarning, true,
       "a folder below a collection that is not among its Members",
       "The file lies in a folder directly below that of a collection, but the collection's "
       "\"Members\" link neither to its key nor to the key of its folder: clients that walk the "
       "collection do not find it. Add the link, and correct the count, or remove the folder."},
      {RuleId::kRedfishOrphan, "redfish-orphan", Level::kNote, true,
       "a resource that no other file refers to",
       "No link and no other string in any other file leads to the resource, so clients, which "
       "go from link to link, do not find it. Link to it, or remove it. The root of the tree and "
       "OData's service document need no link. When files cannot be read, a resource is judged "
       "only where the file of the folder above could be: the link may be in one of the others."},
      {RuleId::kRedfishMemberId, "redfish-member-id", Level::kNote, true,
       "a member whose \"#/...\" id is not its place",
       "An object within a resource is named by the resource's key, \"#\" and the JSON pointer "
       "to the object, such as \"/redfish/v1/Chassis/1/Power#/PowerSupplies/0\". This one names "
       "another place, mostly since it was copied or its array was reordered. The object is "
       "stored under the name that it gives, so a wrong one can also collide with the object "
       "that the name belongs to."},
      {RuleId::kRedfishActionTarget, "redfish-action-target", Level::kNote, true,
       "an action whose target is not its resource's",
       "Clients post an action to its \"target\": the key of the resource, \"/Actions/\" and the "
       "name of the action without \"#\"; below \"Oem\", \"/Actions/Oem/\" and the name. Another "
       "target mostly belongs to the resource that this one was copied from, and would act on "
       "that."},
      {RuleId::kRedfishErrorBody, "redfish-error-body", Level::kWarning, true,
       "an error response in place of a resource",
       "The file holds an \"error\" with a code, a message or extended information and no "
       "\"@odata.id\": what a service answers to a request that failed. Tools that copy a "
       "service write such files when they may not read a resource. Fetch the resource again, or "
       "remove the file and what links to it."},
      {RuleId::kRedfishRequired, "redfish-required", Level::kWarning, false,
       "a resource without \"@odata.id\", \"@odata.type\", Id or Name",
       "Each resource has \"@odata.id\", \"@odata.type\", \"Id\" and \"Name\", and clients rely "
       "on them. The rule is off unless it is selected: trees that are merged into others, or "
       "completed by the service that reads the store, need not have them."},
  };
  return rules;
}

const Rule& RuleOf(RuleId id) { return Rules()[static_cast<std::size_t>(id)]; }

const Rule* FindRule(std::string_view name) {
  const auto& rules = Rules();
  const auto found =
      std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) { return rule.name == name; });
  return found == rules.end() ? nullptr : &*found;
}

}  // namespace ostrafel
