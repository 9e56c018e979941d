// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/value_facts.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "document/file_inclusion.h"
#include "export/member_order.h"
#include "layout/layout.h"
#include "layout/resource_id.h"
#include "layout/value_reading.h"
#include "live/key_reading.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

// FNV-1a with 64 bits. Nobody but a writer by chance has to be told apart.
class Digest {
 public:
  void Add(KeyType type) { Mix(static_cast<std::uint64_t>(type)); }

  void Add(std::string_view bytes) {
    for (const char c : bytes) Mix(static_cast<unsigned char>(c));
    Mix(bytes.size());  // where it ends
  }

  [[nodiscard]] std::uint64_t Value() const { return value_; }

 private:
  void Mix(std::uint64_t number) { value_ = (value_ ^ number) * 0x100000001B3U; }

  std::uint64_t value_ = 0xCBF29CE484222325U;
};

// True when the hash takes its own key (ValueFacts).
bool TakesOwnKey(const std::string& key, const RecordReader& reader, const Hash& hash) {
  const auto id = hash.find(IdMember);
  if (id == hash.end() || !IsText(key)) return false;
  const bool has_other = std::any_of(hash.begin(), hash.end(), [&](const auto& record) {
    const std::string name = record.second.empty() ? reader.MemberOf(record.first) : record.first;
    return name != IdMember && IsText(name);
  });
  if (!has_other) return false;
  const Scalar scalar = ReadScalar(id->second);
  return scalar.kind == ScalarKind::kString && scalar.text == key;
}

// An empty value is that of a key that is gone.
KeyType HeldType(const Stored& value) { return IsEmpty(value) ? KeyType::kNone : KeyTypeOf(value); }

// Looks at a value, record after record.
class Looker {
 public:
  explicit Looker(const std::string& key) : key_(key), reader_(key) {
    look_.facts.size = key.size();
  }

  Look At(const Stored& value) {
    ValueFacts& facts = look_.facts;
    facts.type = HeldType(value);
    if (const Hash* hash = std::get_if<Hash>(&value)) LookAtHash(*hash);
    if (const List* list = std::get_if<List>(&value)) LookAtList(*list);
    shape_.Add(facts.type);
    shape_.Add(facts.takes_own_key ? IdMember : "");
    shape_.Add(facts.includes_file ? FileMember : "");
    facts.content = DigestOf(value);
    facts.shape = shape_.Value();
    return std::move(look_);
  }

 private:
  void LookAtHash(const Hash& hash) {
    look_.facts.takes_own_key = TakesOwnKey(key_, reader_, hash);
    look_.facts.includes_file = hash.count(FileMember) != 0;
    look_.facts.records = hash.size();
    for (const auto& [field, value] : hash) {
      look_.facts.size += field.size() + value.size();
      if (!value.empty()) continue;
      std::vector<RecordParts> readings = reader_.ReadingsOf(field).parts;
      if (readings.empty()) continue;
      // Only of an object any of them may be chosen.
      if (readings.front().marker != ObjectMarker) readings.resize(1);
      for (const RecordParts& reading : readings) {
        if (reading.name == FileMember) look_.facts.includes_file = true;
      }
      AddRecord(std::move(readings));
    }
    std::stable_sort(look_.records.begin(), look_.records.end(),
                     [](const Look::Readings& a, const Look::Readings& b) {
                       return StandsBefore(a.front().name, b.front().name);
                     });
  }

  void LookAtList(const List& list) {
    look_.facts.records = list.size();
    for (std::size_t i = 0; i < list.size(); ++i) {
      look_.facts.size += list[i].size();
      std::optional<RecordParts> parts = reader_.PartsOf(i, list[i]);
      if (parts) AddRecord({*std::move(parts)});
    }
  }

  void AddRecord(Look::Readings readings) {
    const RecordParts& likeliest = readings.front();
    if (likeliest.marker == ObjectRefMarker) return;
    shape_.Add(likeliest.name);
    shape_.Add(likeliest.marker);
    shape_.Add(likeliest.target);
    look_.records.push_back(std::move(readings));
  }

  const std::string& key_;
  RecordReader reader_;
  Look look_;
  Digest shape_;
};

}  // namespace

std::uint64_t DigestOf(const Stored& value) {
  Digest digest;
  digest.Add(HeldType(value));
  if (const Hash* hash = std::get_if<Hash>(&value)) {
    for (const auto& [field, content] : *hash) {
      digest.Add(field);
      digest.Add(content);
    }
  } else if (const List* list = std::get_if<List>(&value)) {
    for (const std::string& element : *list) digest.Add(element);
  }
  return digest.Value();
}

Look LookAt(const std::string& key, const Stored& value) { return Looker(key).At(value); }

}  // namespace ostrafel
