// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/document.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "document/file_inclusion.h"
#include "export/member_order.h"
#include "layout/layout.h"
#include "layout/record_parts.h"
#include "layout/resource_id.h"
#include "layout/value_reading.h"
#include "layout/value_rendering.h"
#include "live/store_reading.h"
#include "text/json_text.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

// What stands again has no longer name or value than this beside its key.
constexpr std::size_t kLongestAgain = 1000;

// What a member is called there whose name is longer.
const std::string kNameAgain = "Id";

// A member of an object, or an element of an array.
struct Item {
  std::string name;         // the member's, or the element's index
  std::string_view record;  // the field, or the element itself
  std::string_view value;   // of a scalar
  std::optional<RecordParts> reference;
};

// Where an item stands.
struct Parent {
  const KeyEntry& entry;
  const KeyEntry& resource;  // that it is a part of, or itself
  ParentKind kind;
};

// The text with U+FFFD for what JSON cannot have.
std::string WithoutGarbage(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const Character character = FirstCharacter(bytes);
    if (character.is_valid && character.code != 0) {
      text += bytes.substr(0, character.size);
    } else {
      text += "\xEF\xBF\xBD";
    }
    bytes.remove_prefix(character.size);
  }
  return text;
}

class Writer {
 public:
  Writer(const KeyEntry& root, RootForm form, const StoreKeys& keys, const Contents& contents)
      : root_(root), form_(form), keys_(keys), contents_(contents) {
    EscapeText(root_id_);
    root_id_ = '"' + root_id_ + '"';
  }

  DocumentText Write() {
    made_.keys.insert(&root_);
    const Parent parent = {root_, root_, ParentKind::kHash};
    std::vector<Item> members = MembersOf(root_);
    if (form_ == RootForm::kWithoutInclusion) Remove(FileMember, &members);
    CheckRootKey(&members);
    RememberOther(root_, members);
    WriteObject(parent, members);
    made_.text = json_.Finish();
    made_.tells_key = root_.second.takes_own_key && HasOther(root_);
    return std::move(made_);
  }

 private:
  void Lose(const Parent& parent, const Item& item, const std::string& reason) {
    const bool is_field = parent.kind == ParentKind::kHash;
    made_.losses.insert(
        {parent.entry.first, is_field ? std::string(item.record) : "element " + item.name, reason});
  }

  static void Remove(std::string_view name, std::vector<Item>* members) {
    members->erase(std::remove_if(members->begin(), members->end(),
                                  [&](const Item& item) { return item.name == name; }),
                   members->end());
  }

  static std::vector<Item>::const_iterator FindId(const std::vector<Item>& members) {
    return std::find_if(members.begin(), members.end(),
                        [](const Item& item) { return item.name == IdMember; });
  }

  const Hash& HashAt(const KeyEntry& entry) const {
    return std::get<Hash>(contents_.find(&entry)->second);
  }

  // A load takes a root's "@odata.id" for its key.
  void CheckRootKey(std::vector<Item>* members) {
    if (form_ == RootForm::kWithItsKey) {
      Remove(IdMember, members);
      const auto place = std::find_if(members->begin(), members->end(), [](const Item& item) {
        return StandsBefore(IdMember, item.name);
      });
      members->insert(place, Item{IdMember, IdMember, root_id_, {}});
      return;
    }
    const auto id = FindId(*members);
    if (id == members->end() || members->size() == 1 || root_.second.takes_own_key) return;
    Lose({root_, root_, ParentKind::kHash}, *id, "a load would take it for the resource's key");
    members->erase(id);
  }

  // The members of the hash, in their order, each name once.
  std::vector<Item> MembersOf(const KeyEntry& entry) {
    const Parent parent = {entry, entry, ParentKind::kHash};
    const RecordReader reader(entry.first);
    std::vector<Item> members;
    for (const auto& [field, value] : HashAt(entry)) {
      Item item = {field, field, value, {}};
      if (value.empty()) TakeReference(parent, reader, &item);
      if (IsText(item.name)) {
        members.push_back(std::move(item));
      } else {
        Lose(parent, item, "JSON can have no such name");
      }
    }
    std::stable_sort(members.begin(), members.end(), [](const Item& a, const Item& b) {
      if (a.name != b.name) return StandsBefore(a.name, b.name);
      return !a.reference && b.reference;
    });
    const auto is_same = [](const Item& a, const Item& b) { return a.name == b.name; };
    for (std::size_t i = 1; i < members.size(); ++i) {
      if (is_same(members[i - 1], members[i])) {
        Lose(parent, members[i], "the hash has another record of this member");
      }
    }
    members.erase(std::unique(members.begin(), members.end(), is_same), members.end());
    return members;
  }

  // Reads the field as a reference record, if it is one.
  void TakeReference(const Parent& parent, const RecordReader& reader, Item* item) {
    RecordReadings readings = reader.ReadingsOf(item->record);
    if (readings.parts.empty()) return;
    std::size_t chosen = 0;
    if (readings.parts.size() > 1 && readings.parts.front().marker == ObjectMarker) {
      chosen = ChosenReading(keys_, &readings);
    }
    if (readings.likely > 1) Lose(parent, *item, "can be read in more than one way");
    item->reference = std::move(readings.parts[chosen]);
    item->name = item->reference->name;
  }

  void WriteObject(const Parent& parent, const std::vector<Item>& members) {
    ++level_;
    json_.OpenObject();
    for (const Item& member : members) {
      json_.Name(member.name);
      WriteItem(parent, member);
    }
    json_.Close();
    --level_;
  }

  void WriteArray(const Parent& parent) {
    ++level_;
    json_.OpenArray();
    const RecordReader reader(parent.entry.first);
    const List& list = std::get<List>(contents_.find(&parent.entry)->second);
    for (std::size_t i = 0; i < list.size(); ++i) {
      WriteItem(parent, {std::to_string(i), list[i], list[i], reader.PartsOf(i, list[i])});
    }
    json_.Close();
    --level_;
  }

  void WriteItem(const Parent& parent, const Item& item) {
    if (!item.reference) return WriteScalar(parent, item);
    // What the item holds stands two levels deeper than the members of the object that is open.
    if (level_ + 2 > kMostLevels && !IsEmptyPart(*item.reference)) {
      Lose(parent, item, "stands deeper than a load reads");
      return WriteEmpty(*item.reference);
    }
    if (item.reference->marker == ObjectRefMarker) return WriteLink(parent, item);
    const bool is_object = item.reference->marker == ObjectMarker;
    return is_object ? WriteObjectAt(parent, item) : WriteArrayAt(parent, item);
  }

  // What a record of an object or array points to. The plan was made with the same records, unless
  // somebody changed them to others of the same digest.
  [[nodiscard]] const KeyEntry& EntryOf(const RecordParts& reference) const {
    const auto entry = keys_.find(reference.target);
    if (entry == keys_.end()) throw std::runtime_error(UnsteadyMessage(1, reference.target));
    return *entry;
  }

  // True for an object or array that has no key, because it holds nothing.
  [[nodiscard]] bool IsEmptyPart(const RecordParts& reference) const {
    return reference.marker != ObjectRefMarker && reference.is_in_place &&
           EntryOf(reference).second.type == KeyType::kNone;
  }

  void WriteEmpty(const RecordParts& reference) {
    if (reference.marker == ArrayMarker) {
      json_.OpenArray();
    } else {
      json_.OpenObject();
    }
    json_.Close();
  }

  void WriteLink(const Parent& parent, const Item& item) {
    const std::string& target = item.reference->target;
    if (!IsText(target)) Lose(parent, item, "JSON can have no such string");
    json_.OpenObject();
    json_.Member(IdMember, WithoutGarbage(target));
    json_.Close();
  }

  void WriteScalar(const Parent& parent, const Item& item) {
    if (parent.kind == ParentKind::kHash && IsReservedProperty(item.name)) {
      const std::optional<std::string> text = UnescapeText(item.value);
      if (!text) Lose(parent, item, "no create stores such a string");
      return WriteString(parent, item, text ? *text : std::string(item.value));
    }
    const Scalar scalar = ReadScalar(item.value);
    switch (scalar.kind) {
      case ScalarKind::kString:
        return WriteString(parent, item, scalar.text);
      case ScalarKind::kLiteral:
        if (IsBound(item.value)) Lose(parent, item, "may have been a number of more than 32 bits");
        return json_.Literal(scalar.text);
      case ScalarKind::kUnknown:
        break;
    }
    if (const std::optional<std::string> number = ReadForeignNumber(item.value)) {
      Lose(parent, item, "no create stores a number like this");
      return json_.Literal(*number);
    }
    Lose(parent, item, "no create stores such a value");
    WriteString(parent, item, std::string(item.value));
  }

  void WriteString(const Parent& parent, const Item& item, const std::string& text) {
    if (!IsText(text)) Lose(parent, item, "JSON can have no such string");
    json_.String(WithoutGarbage(text));
  }

  void WriteObjectAt(const Parent& parent, const Item& item) {
    const KeyEntry& entry = EntryOf(*item.reference);
    const bool is_in_place = item.reference->is_in_place;
    if (entry.second.type == KeyType::kHash && entry.second.takes_own_key) {
      return WriteResourceAt(parent, item, entry);
    }
    if (entry.second.type != KeyType::kHash) {
      // The record comes back; what else the key holds stands elsewhere, or is listed.
      if (is_in_place) return WriteEmpty(*item.reference);
      Lose(parent, item,
           entry.second.type == KeyType::kNone ? "its hash is not there" : "its key holds no hash");
      return WriteLink(parent, item);
    }
    // A load has the root's key before anything in the document.
    if (&entry == &root_ && &parent.resource == &root_ && !is_in_place && HasOther(root_)) {
      return WriteAgain(root_);
    }
    if (!is_in_place && !IsDerivedKey(entry.first)) {
      Lose(parent, item, "its hash does not have its key in \"@odata.id\"");
      return WriteLink(parent, item);
    }
    if (!is_in_place) Lose(parent, item, "a create would store the object elsewhere");
    if (!TakePart(parent, entry, true, is_in_place)) return WriteEmpty(*item.reference);
    const Parent self = {entry, parent.resource, ParentKind::kHash};
    std::vector<Item> members = MembersOf(entry);
    DropId(self, &members);
    WriteObject(self, members);
  }

  // True when a part is to be written where this record of it stands, which it is once.
  bool TakePart(const Parent& parent, const KeyEntry& entry, bool is_object, bool is_in_place) {
    return StandsHere(entry, is_object, is_in_place) && contents_.count(&entry) != 0 &&
           entry.second.owner == &parent.resource && made_.keys.insert(&entry).second;
  }

  // A part with an "@odata.id" would be stored there.
  void DropId(const Parent& parent, std::vector<Item>* members) {
    const auto id = FindId(*members);
    if (id == members->end()) return;
    Lose(parent, *id, "a create would take it for the object's key");
    members->erase(id);
  }

  void WriteResourceAt(const Parent& parent, const Item& item, const KeyEntry& entry) {
    if (contents_.count(&entry) == 0) {
      Lose(parent, item, "stands in too many documents, and is a link here");
      return WriteLink(parent, item);
    }
    if (made_.keys.count(&entry) != 0) return WriteAgain(entry);
    if (key_only_.count(&entry) != 0) return WriteKeyOnly(parent, item);
    const std::vector<Item> members = MembersOf(entry);
    RememberOther(entry, members);
    if (!HasOther(entry)) {
      key_only_.insert(&entry);
      return WriteKeyOnly(parent, item);
    }
    made_.keys.insert(&entry);
    WriteObject({entry, entry, ParentKind::kHash}, members);
  }

  // Keeps the member that stands beside the key where the object stands again: the shortest one.
  // Only where the object stands first all members are looked at: it may stand again very often.
  void RememberOther(const KeyEntry& entry, const std::vector<Item>& members) {
    if (!IsText(entry.first)) return;
    const auto other =
        std::min_element(members.begin(), members.end(),
                         [](const Item& a, const Item& b) { return SizeAgain(a) < SizeAgain(b); });
    if (other != members.end() && other->name != IdMember) others_.emplace(&entry, *other);
  }

  // So many bytes stand beside the key, about: scalars are better than objects and arrays, of which
  // nothing is left, and the key itself is the last choice.
  static std::size_t SizeAgain(const Item& item) {
    if (item.name == IdMember) return std::string_view::npos;
    return item.name.size() +
           (item.reference ? kLongestAgain : std::min(item.value.size(), kLongestAgain));
  }

  [[nodiscard]] bool HasOther(const KeyEntry& entry) const { return others_.count(&entry) != 0; }

  // The key, and one member more: without it this would be a link. A load looks no further.
  void WriteAgain(const KeyEntry& entry) {
    const Item& other = others_.find(&entry)->second;
    const std::string& name = other.name.size() > kLongestAgain ? kNameAgain : other.name;
    json_.OpenObject();
    const bool is_key_first = StandsBefore(IdMember, name);
    if (is_key_first) json_.Member(IdMember, entry.first);
    json_.Name(name);
    if (other.reference) {
      WriteEmpty(*other.reference);
    } else if (other.value.size() > kLongestAgain) {
      json_.Null();
    } else {
      WriteScalar({entry, entry, ParentKind::kHash}, other);
    }
    if (!is_key_first) json_.Member(IdMember, entry.first);
    json_.Close();
  }

  void WriteKeyOnly(const Parent& parent, const Item& item) {
    Lose(parent, item, "JSON can have nothing of its hash but the key");
    WriteLink(parent, item);
  }

  void WriteArrayAt(const Parent& parent, const Item& item) {
    const KeyEntry& entry = EntryOf(*item.reference);
    const bool is_in_place = item.reference->is_in_place;
    if (!is_in_place) Lose(parent, item, "a create would store the array elsewhere");
    if (!TakePart(parent, entry, false, is_in_place)) return WriteEmpty(*item.reference);
    WriteArray({entry, parent.resource, ParentKind::kList});
  }

  const KeyEntry& root_;
  RootForm form_;
  const StoreKeys& keys_;
  const Contents& contents_;
  std::string root_id_ = root_.first;  // as a stored string
  DocumentText made_;
  JsonWriter json_{kIndent};
  std::size_t level_ = 0;
  std::unordered_map<const KeyEntry*, Item> others_;  // see RememberOther
  std::unordered_set<const KeyEntry*> key_only_;      // resources that have no other member
};

}  // namespace

DocumentText WriteDocument(const KeyEntry& root, RootForm form, const StoreKeys& keys,
                           const Contents& contents) {
  return Writer(root, form, keys, contents).Write();
}

}  // namespace ostrafel
