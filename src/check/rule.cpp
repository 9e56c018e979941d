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
       "what an update of the unchanged tree loses", ""},
      {RuleId::kUpdateSlow, "update-slow", Level::kNote, true,
       "arrays whose update searches all keys", ""},
      {RuleId::kRedfishCount, "redfish-count", Level::kWarning, true,
       "a Members@odata.count that is not the number of Members", ""},
      {RuleId::kRedfishNotMember, "redfish-not-member", Level::kWarning, true,
       "a folder below a collection that is not among its Members", ""},
      {RuleId::kRedfishOrphan, "redfish-orphan", Level::kNote, true,
       "a resource that nothing links to", ""},
      {RuleId::kRedfishMemberId, "redfish-member-id", Level::kNote, true,
       "a member whose \"#/...\" id is not its place", ""},
      {RuleId::kRedfishActionTarget, "redfish-action-target", Level::kNote, true,
       "an action whose target is not its resource's", ""},
      {RuleId::kRedfishErrorBody, "redfish-error-body", Level::kWarning, true,
       "an error response in place of a resource", ""},
      {RuleId::kRedfishRequired, "redfish-required", Level::kWarning, false,
       "a resource without \"@odata.id\", \"@odata.type\", Id or Name", ""},
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
