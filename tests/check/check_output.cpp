// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check_output.h"

#include <jansson.h>

#include <utility>

#include "document/document.h"

namespace ostrafel {

namespace {

// jansson takes no lone surrogate, which is what a byte that is no UTF-8 is printed as. So the byte
// 0xNN goes through it as the character U+F7NN, which no test has.
constexpr std::size_t kEscapeSize = 6;  // of \uXXXX

// True when the escape at that place, "\\ud" and more, is the first half of a pair.
bool BeginsPair(const std::string& text, std::size_t place) {
  return text.find_first_of("89abAB", place + 3) == place + 3;
}

std::string WithoutLoneSurrogates(std::string text) {
  for (std::size_t i = text.find('\\'); i != std::string::npos; i = text.find('\\', i)) {
    if (text.compare(i, 3, "\\ud") != 0) {
      i += 2;
    } else if (BeginsPair(text, i)) {
      i += 2 * kEscapeSize;
    } else {
      if (text.compare(i, 4, "\\udc") == 0) text.replace(i, 4, "\\uf7");
      i += kEscapeSize;
    }
  }
  return text;
}

// U+F780 to U+F7FF as bytes.
std::string WithBytes(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_byte = text.compare(i, 2, "\xEF\x9E") == 0 || text.compare(i, 2, "\xEF\x9F") == 0;
    if (!is_byte || i + 2 >= text.size()) {
      bytes += text[i];
      continue;
    }
    const unsigned high = text[i + 1] == '\x9E' ? 0x80 : 0xC0;
    bytes += static_cast<char>(high | (static_cast<unsigned char>(text[i + 2]) & 0x3FU));
    i += 2;
  }
  return bytes;
}

Document Parse(const std::string& text) {
  const std::string accepted = WithoutLoneSurrogates(text);
  return Document(json_loadb(accepted.data(), accepted.size(), JSON_REJECT_DUPLICATES, nullptr));
}

// Takes the members of an object in their order, name and value. False when that is not the byte
// order of the names, the value is no object, or take returns false.
template <typename Take>
bool TakeMembers(json_t* object, const Take& take) {
  if (!json_is_object(object)) return false;
  std::optional<std::string> last;
  for (void* member = json_object_iter(object); member != nullptr;
       member = json_object_iter_next(object, member)) {
    std::string name = WithBytes(json_object_iter_key(member));
    if (last && name <= *last) return false;
    if (!take(name, json_object_iter_value(member))) return false;
    last = std::move(name);
  }
  return true;
}

bool TakeString(const json_t* value, std::string* text) {
  if (!json_is_string(value)) return false;
  *text = WithBytes(json_string_value(value));
  return true;
}

bool TakeNumber(const json_t* summary, const std::string& name, std::size_t* number) {
  const json_t* value = json_object_get(summary, name.c_str());
  if (!json_is_integer(value)) return false;
  *number = static_cast<std::size_t>(json_integer_value(value));
  return true;
}

bool TakePlayed(const json_t* summary, const std::string& action, Played* played) {
  std::size_t status = 0;
  if (!TakeNumber(summary, action + "_status", &status)) return false;
  played->status = static_cast<int>(status);
  return TakeString(json_object_get(summary, (action + "_messages").c_str()), &played->messages);
}

bool TakeHash(json_t* members, Hash* hash) {
  return TakeMembers(members, [&](const std::string& field, const json_t* value) {
    return TakeString(value, &(*hash)[field]);
  });
}

bool TakeList(const json_t* elements, List* list) {
  if (!json_is_array(elements)) return false;
  for (std::size_t i = 0; i < json_array_size(elements); ++i) {
    if (!TakeString(json_array_get(elements, i), &list->emplace_back())) return false;
  }
  return true;
}

bool TakeStored(const json_t* value, Stored* stored) {
  if (json_object_size(value) != 1) return false;
  if (json_t* members = json_object_get(value, "hash")) {
    return TakeHash(members, &stored->emplace<Hash>());
  }
  return TakeList(json_object_get(value, "list"), &stored->emplace<List>());
}

}  // namespace

std::optional<Summary> SummaryIn(const std::string& text) {
  const Document document = Parse(text);
  const json_t* object = json_object_get(document.get(), "summary");
  Summary summary;
  const bool is_whole = TakeNumber(object, "keys", &summary.keys) &&
                        TakeNumber(object, "records", &summary.records) &&
                        TakePlayed(object, "create", &summary.create) &&
                        TakePlayed(object, "update", &summary.update);
  return is_whole ? std::optional<Summary>(summary) : std::nullopt;
}

std::optional<Server> StoreIn(const std::string& text) {
  const Document document = Parse(text);
  Server server;
  const bool is_store =
      TakeMembers(document.get(), [&](const std::string& key, const json_t* value) {
        return TakeStored(value, &server.keys[key]);
      });
  return is_store ? std::optional<Server>(std::move(server)) : std::nullopt;
}

}  // namespace ostrafel
