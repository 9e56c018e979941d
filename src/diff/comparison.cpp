// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/comparison.h"

#include <utility>

#include "diff/list_alignment.h"

namespace ostrafel {

namespace {

// Goes through two maps together, which are sorted alike: an item that only the first has goes to
// take_first, one that only the second has to take_second, and two of the same name to take_both.
template <typename Map, typename TakeFirst, typename TakeSecond, typename TakeBoth>
void GoThroughBoth(const Map& first, const Map& second, const TakeFirst& take_first,
                   const TakeSecond& take_second, const TakeBoth& take_both) {
  auto a = first.begin();
  auto b = second.begin();
  while (a != first.end() || b != second.end()) {
    if (b == second.end() || (a != first.end() && a->first < b->first)) {
      take_first(a->first, a->second);
      ++a;
    } else if (a == first.end() || b->first < a->first) {
      take_second(b->first, b->second);
      ++b;
    } else {
      take_both(a->first, a->second, b->second);
      ++a;
      ++b;
    }
  }
}

void CompareHashes(const std::string& key, const Hash& stored, const Hash& wanted,
                   Differences* differences) {
  GoThroughBoth(
      stored, wanted,
      [&](const std::string& field, const std::string& value) {
        differences->push_back({Change::kExtra, key, KeyType::kHash, field, value, std::nullopt});
      },
      [&](const std::string& field, const std::string& value) {
        differences->push_back({Change::kMissing, key, KeyType::kHash, field, std::nullopt, value});
      },
      [&](const std::string& field, const std::string& old_value, const std::string& new_value) {
        if (old_value == new_value) return;
        differences->push_back(
            {Change::kChanged, key, KeyType::kHash, field, old_value, new_value});
      });
}

void CompareLists(const std::string& key, const List& stored, const List& wanted,
                  Differences* differences) {
  if (stored == wanted) return;
  for (const ListEdit& edit : AlignLists(stored, wanted)) {
    Difference difference = {edit.change,  key,          KeyType::kList,
                             edit.element, std::nullopt, std::nullopt};
    if (edit.change != Change::kMissing) difference.stored = stored[edit.element.stored_index];
    if (edit.change != Change::kExtra) difference.wanted = wanted[edit.element.wanted_index];
    differences->push_back(std::move(difference));
  }
}

void CompareValues(const std::string& key, const Stored& stored, const Stored& wanted,
                   Differences* differences) {
  const KeyType type = KeyTypeOf(wanted);
  if (stored.index() != wanted.index()) {
    differences->push_back(
        {Change::kChanged, key, type, WholeKey(), NameOf(KeyTypeOf(stored)), NameOf(type)});
  } else if (const Hash* hash = std::get_if<Hash>(&stored)) {
    CompareHashes(key, *hash, std::get<Hash>(wanted), differences);
  } else if (const List* list = std::get_if<List>(&stored)) {
    CompareLists(key, *list, std::get<List>(wanted), differences);
  }
}

}  // namespace

const char* NameOf(KeyType type) {
  switch (type) {
    case KeyType::kHash:
      return "hash";
    case KeyType::kList:
      return "list";
    case KeyType::kNone:
    case KeyType::kOther:
      break;
  }
  return "other";
}

std::size_t CountRecords(const Stored& value) {
  if (const Hash* hash = std::get_if<Hash>(&value)) return hash->size();
  if (const List* list = std::get_if<List>(&value)) return list->size();
  return 0;
}

std::size_t CountRecords(const Server& store, const std::string& key) {
  const auto found = store.keys.find(key);
  return found == store.keys.end() ? 0 : CountRecords(found->second);
}

Differences CompareStores(const Server& stored, const Server& wanted) {
  Differences differences;
  const auto push_whole = [&](Change change, const std::string& key, const Stored& value) {
    differences.push_back({change, key, KeyTypeOf(value), WholeKey(), std::nullopt, std::nullopt});
  };
  GoThroughBoth(
      stored.keys, wanted.keys,
      [&](const std::string& key, const Stored& value) { push_whole(Change::kExtra, key, value); },
      [&](const std::string& key, const Stored& value) {
        push_whole(Change::kMissing, key, value);
      },
      [&](const std::string& key, const Stored& old_value, const Stored& new_value) {
        CompareValues(key, old_value, new_value, &differences);
      });
  return differences;
}

}  // namespace ostrafel
