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
       "a folder or a file that cannot be opened or read",
       "The loader could not look at, open or read a file or a folder. A path that "
       "cannot be looked at, such as a link that leads nowhere, is passed over, with a "
       "message. A folder that cannot be read ends the load before anything is stored; a "
       "file that cannot be opened or read ends it at that file.\n"
       "Mend the link or the permissions, or remove what is not wanted."},
      {RuleId::kLoadSyntax, "load-syntax", Level::kError, true,
       "a file that is not JSON for the loader's parser",
       "The loader's parser refuses the file; the sentence ends with the parser's own "
       "words. The load ends at this file: what comes after it in the order of the "
       "folders is not stored. An integer that does not fit into 64 bits, a scalar as "
       "the whole document and an empty file are refused as well.\n"
       "Correct the text at this place. A number that is too large can be written as a "
       "string."},
      {RuleId::kLoadNotObject, "load-not-object", Level::kError, true,
       "a file that holds no object",
       "The file is JSON, but an array and not an object. A resource, and what a "
       "resource includes, is an object. The load ends at this file.\n"
       "Put the members of a resource into braces, or give the file another name if it "
       "is not to be loaded."},
      {RuleId::kLoadIdType, "load-id-type", Level::kError, true,
       "an \"@odata.id\" that is no string",
       "The \"@odata.id\" of an object says under which key the object is stored, so the "
       "loader needs a string. At the root of a file any other value ends the load, "
       "without a message. In an object further inside, the loader stops writing the "
       "member of the root that holds the object: the object is lost and so is what "
       "comes after it in that member, without a message; but if that member is the last "
       "one of the file, the load ends.\n"
       "Write the path of the resource as a string, or remove the member."},
      {RuleId::kLoadInclude, "load-include", Level::kError, true,
       "a \"&&File\" that cannot be included",
       "A file whose root has a \"&&File\" member takes its members from the file of that "
       "name below the web server's directory (--www). The name must be a string without "
       "\"..\", and the file must be there and readable. Otherwise the load ends at the "
       "file that has the member.\n"
       "Correct the name, or put the file there. If it is installed elsewhere on the "
       "build host, say so with --www."},
      {RuleId::kLoadKeyType, "load-key-type", Level::kError, true,
       "a key that would be a hash and a list",
       "The store keeps an object as a hash and an array as a list, and a key can hold "
       "only one of them. Here both have the same key, as {\"A/B\": {...}, \"A\": {\"B\": "
       "[...]}} has, or as members of an object and of a folder with the same name may have. "
       "The store refuses one of them, and what was sent together with it may be lost as "
       "well.\n"
       "Rename one of the members, or remove one."},
      {RuleId::kLoadLostMember, "load-lost-member", Level::kError, true,
       "a member that is not stored although the load succeeds",
       "The load succeeds, yet this member is not stored as the file has it. Causes are: "
       "an object before it, or in it, has an \"@odata.id\" that is no string, which stops "
       "all that is around that object; the file includes another one with \"&&File\", "
       "whose members replace its own; another value has the same place in the store and "
       "replaces it; two arrays have the same key and are stored as one list.\n"
       "Mend what the sentence and the related place name."},
      {RuleId::kLoadNothing, "load-nothing", Level::kWarning, true, "no file of the name anywhere",
       "No file of the name that the load looks for (index.json unless another one is "
       "given) is in the folder or below it. The loader takes this for success; a create "
       "has then removed what was stored and put nothing in its place. Only names that "
       "end in \".json\" are taken.\n"
       "Correct the path or the name."},
      {RuleId::kStoreIntegerClamped, "store-integer-clamped", Level::kWarning, true,
       "an integer beyond 32 bits",
       "Readers of the store hold integers in 32 bits, so the loader stores an integer "
       "above 2147483647 as 2147483647 and one below -2147483648 as -2147483648.\n"
       "Write the number as a string, or with a point and a zero, if its readers can "
       "take that; else choose a larger unit."},
      {RuleId::kStoreRealRounded, "store-real-rounded", Level::kWarning, true,
       "a real that loses digits at six places",
       "The loader stores a number that has a point or an exponent with six digits after "
       "the point, so that a smaller part is lost: 1e-7 becomes 0.\n"
       "Round the number yourself, write it as a string, or choose a smaller unit."},
      {RuleId::kStoreDuplicateMember, "store-duplicate-member", Level::kWarning, true,
       "the same name twice in an object",
       "The object has two members of one name. The loader's parser keeps the value of "
       "the last one and says nothing of the others, which are listed as related.\n"
       "Remove all but one."},
      {RuleId::kStoreReservedType, "store-reserved-type", Level::kNote, true,
       "a reserved \"&&\" member that is no string",
       "The members that begin with \"&&\" and are known to the readers of the store, such "
       "as \"&&Privileges\", are stored without quotes when they are strings. Any other "
       "value is stored like that of an ordinary member, where readers may not look for "
       "it.\n"
       "Write the value as a string."},
      {RuleId::kKeyClaimedTwice, "key-claimed-twice", Level::kError, true,
       "a key whose members several places write",
       "A key of the store is the \"@odata.id\" of a file or of an object within one. Whoever "
       "comes to a key first in a load writes its members; all that others hold for the same "
       "key is dropped without a message. Between files the order in which the folders list "
       "their entries decides, and it may be another one on the machine than here.\n"
       "Keep one claimant. Give the others keys of their own, or make links of them: objects "
       "that hold nothing but \"@odata.id\"."},
      {RuleId::kKeyNotPath, "key-not-path", Level::kWarning, true,
       "a file whose \"@odata.id\" is not the key of its folder",
       "A file is stored under its own \"@odata.id\", wherever it lies. Whoever looks for it "
       "by its folder, a link above all, finds nothing there; and a second file may claim "
       "the same key.\n"
       "A file that holds nothing but \"@odata.id\" is stored as its folder says, and what it "
       "says of itself is wrong.\n"
       "Correct the \"@odata.id\", often left over from a copied file, or move the file to the "
       "folder that it names."},
      {RuleId::kKeyTrailingSlash, "key-trailing-slash", Level::kNote, true,
       "a file whose \"@odata.id\" differs from the key of its folder by a slash at the end",
       "To the store, a name with a slash at the end and one without are two keys. A file is "
       "stored under its own \"@odata.id\", and links that end otherwise do not find it.\n"
       "Write the \"@odata.id\" and all links to it alike. A service root may well be known as "
       "\"/redfish/v1/\": then nothing has to be done."},
      {RuleId::kKeyOutsideUri, "key-outside-uri", Level::kWarning, true,
       "a key that a create of the URI does not remove",
       "A create first removes what is stored at the URI and below it. Keys elsewhere are "
       "written all the same but never removed: what an older tree left there stays, and is "
       "mixed with what this one holds.\n"
       "Let \"@odata.id\" begin with the URI, or load that part of the tree with a URI of its "
       "own. \"#/...\" alone is a key like any other: put the key of the file in front of it."},
      {RuleId::kKeyGlob, "key-glob", Level::kWarning, true,
       R"("*", "?", "[" or "\" in a key or a name)",
       "An update looks for stored keys and links by patterns that it makes of keys and "
       "names as they are. There \"*\" stands for any characters, \"?\" for any one, \"[\" begins "
       "a choice of them, and \"\\\" takes the meaning from the next one. So the update finds, "
       "and may remove, what belongs to others, or misses what it looks for. Of keys, only "
       "the one is told where the character comes in, not those below it.\n"
       "Use other characters."},
      {RuleId::kKeyCase, "key-case", Level::kWarning, true, "keys that differ in case only",
       "Keys are compared byte by byte. Two that differ in upper and lower case only are two "
       "entries, each with a part of what was meant for one, and a file system that does not "
       "tell them apart cannot even hold their folders. Of keys that differ because those "
       "above them do, only these are told.\n"
       "Choose one spelling, in folders, \"@odata.id\", links and names."},
      {RuleId::kKeyBlank, "key-blank", Level::kNote, true,
       "a name that goes on after a blank beside one that ends there",
       "The store notes a link as one text: the name of its member, a blank and the target. "
       "When an update looks for the links of \"A\", it also takes those of \"A B\" for them, "
       "and may remove them.\n"
       "Rename one of the members."},
      {RuleId::kLinkDangling, "link-dangling", Level::kWarning, true,
       "a link that leads to nothing stored",
       "A link leads to what is stored under exactly its text. Nothing is, because no file "
       "claims that key, or because the file of that folder says in its \"@odata.id\" that it "
       "is another, or because of a slash at the end. A part after \"#\" may also lead into a "
       "document; then this rule looks at the part before it. Links to other hosts are not "
       "looked at.\n"
       "Correct the link, or the \"@odata.id\" of the file that it should lead to."},
      {RuleId::kLinkFragment, "link-fragment", Level::kWarning, true,
       "a link whose part after \"#\" leads nowhere",
       "The part of a link after \"#\" is the place of a value in a document, such as "
       "\"/Fans/0\": names and indexes, from 0, each after a slash. The document is stored, "
       "but has nothing at that place. Often an element was moved or removed.\n"
       "Correct the place. In names, \"~1\" stands for a slash and \"~0\" for a \"~\"."},
      {RuleId::kLinkUri, "link-uri", Level::kWarning, true,
       "a URI in a member that leads to nothing stored",
       "Members whose names end with \"Uri\", \"URI\" or \"@Redfish.ActionInfo\" lead to resources "
       "like links do. This one begins with a slash, so it should lead to one of this "
       "service, and nothing is stored there. What follows a \"?\" does not count, and members "
       "that take uploads, such as HttpPushUri, are not looked at.\n"
       "Correct it. If something else than the store answers there, ignore the finding or "
       "accept it in a baseline."},
      {RuleId::kLinkRepeated, "link-repeated", Level::kNote, true,
       "the same link twice in an array",
       "The array holds the same link more than once. Both are stored, and clients count and "
       "show the resource twice.\n"
       "Remove one. Then see whether a count beside the array, such as Members@odata.count, "
       "has to be corrected, too."},
      {RuleId::kUpdateLoses, "update-loses", Level::kWarning, true,
       "what an update of the unchanged tree loses",
       "An update removes what the store holds of a value in an older form before it writes the "
       "value again. It cannot tell an older form from another value whose key looks alike: the "
       "update of an array of objects removes every key that begins like the array's, a member "
       "\"A\" removes the links of a member \"A B\", and of two values with one key the later "
       "removes the earlier. What this run had sent before is lost; a load sends what waits "
       "after each 2,000 records, so a small change elsewhere decides what is hit. Create loads "
       "such a tree as it is.\n"
       "Rename one of the values, or load with create."},
      {RuleId::kUpdateSlow, "update-slow", Level::kNote, true,
       "arrays whose update searches all keys",
       "Before an update writes an array that held objects, arrays or links, it asks the server "
       "for all keys below the array. Redis looks at each of its keys for that, those of other "
       "trees included, so the time grows with the number of such arrays times the number of "
       "keys.\n"
       "Nothing is wrong with the tree. Where it matters, load with create, which searches "
       "three times in all."},
      {RuleId::kRedfishCount, "redfish-count", Level::kWarning, true,
       "a Members@odata.count that is not the number of Members",
       "\"Members@odata.count\" says how many members a collection has; clients trust it and "
       "read past the end, or not to the end. It must be an integer, and the size of the array "
       "\"Members\" beside it; larger only when \"Members@odata.nextLink\" names a document with "
       "more of them.\n"
       "Correct the count, or the members."},
      {RuleId::kRedfishNotMember, "redfish-not-member", Level::kWarning, true,
       "a folder below a collection that is not among its Members",
       "The file lies in a folder directly below that of a collection, but the collection's "
       "\"Members\" link neither to its key nor to the key of its folder: clients that walk the "
       "collection do not find it.\n"
       "Add the link, and correct the count, or remove the folder."},
      {RuleId::kRedfishOrphan, "redfish-orphan", Level::kNote, true,
       "a resource that no other file refers to",
       "No link and no other string in any other file leads to the resource, so clients, which "
       "go from link to link, do not find it. The root of the tree and OData's service document "
       "need no link. When files cannot be read, a resource is judged only where the file of the "
       "folder above could be: the link may be in one of the others.\n"
       "Link to it, or remove it."},
      {RuleId::kRedfishMemberId, "redfish-member-id", Level::kNote, true,
       "a member whose \"#/...\" id is not its place",
       "An object within a resource is named by the resource's key, \"#\" and the JSON pointer "
       "to the object, such as \"/redfish/v1/Chassis/1/Power#/PowerSupplies/0\". This one names "
       "another place, mostly since it was copied or its array was reordered. The object is "
       "stored under the name that it gives, so a wrong one can also collide with the object "
       "that the name belongs to.\n"
       "Write the key of the resource, \"#\" and the place where the object stands."},
      {RuleId::kRedfishActionTarget, "redfish-action-target", Level::kNote, true,
       "an action whose target is not its resource's",
       "Clients post an action to its \"target\": the key of the resource, \"/Actions/\" and the "
       "name of the action without \"#\"; below \"Oem\", \"/Actions/Oem/\" and the name. Another "
       "target mostly belongs to the resource that this one was copied from, and would act on "
       "that.\n"
       "Write the target that the sentence names."},
      {RuleId::kRedfishErrorBody, "redfish-error-body", Level::kWarning, true,
       "an error response in place of a resource",
       "The file holds an \"error\" with a code, a message or extended information and no "
       "\"@odata.id\": what a service answers to a request that failed. Tools that copy a "
       "service write such files when they may not read a resource.\n"
       "Fetch the resource again, or remove the file and what links to it."},
      {RuleId::kRedfishRequired, "redfish-required", Level::kWarning, false,
       R"(a resource without "@odata.id", "@odata.type", Id or Name)",
       "Each resource has \"@odata.id\", \"@odata.type\", \"Id\" and \"Name\", and clients rely "
       "on them; a collection has no \"Id\". The rule is off unless it is selected: trees that are "
       "merged into others, or completed by the service that reads the store, need not have "
       "them.\n"
       "Add what the sentence names."},
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
