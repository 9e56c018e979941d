// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/record_parts.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/affixes.h"
#include "layout/layout.h"

namespace ostrafel {

namespace {

// More readings of one record are of no use to anybody: so many of them, or of so many bytes.
constexpr std::size_t kMostReadings = 32;
constexpr std::size_t kMostBytes = std::size_t{64} * 1024;

constexpr std::array<std::string_view, 3> kMarkers = {ObjectMarker, ObjectRefMarker, ArrayMarker};

// The marker that text begins with; empty when there is none.
std::string_view MarkerOf(std::string_view text) {
  for (const std::string_view marker : kMarkers) {
    if (StartsWith(text, marker)) return marker;
  }
  return {};
}

bool BeginsLikeKey(std::string_view target) {
  return StartsWith(target, "/") || IsDerivedKey(target);
}

}  // namespace

RecordReader::RecordReader(const std::string& key)
    : key_(key), shortest_(DerivedKey(key, "").size()) {}

bool RecordReader::IsInPlace(std::string_view name, std::string_view target) const {
  // The slashes that NormalizeKey takes away are not counted.
  if (target.size() < shortest_ || target.size() > shortest_ + name.size()) return false;
  return target == DerivedKey(key_, std::string(name));
}

// The blank in rest, what follows the marker, whose target is the derived key of the name before
// it; npos when there is none.
std::size_t RecordReader::FindDerivedTarget(std::string_view rest) const {
  // The size of the derived key of the name that ends at i. The farther on the blank, the longer is
  // that and the shorter the target, so that no more than one fits.
  std::size_t size = shortest_;
  char last = '/';
  for (std::size_t i = 0; i < rest.size(); ++i) {
    const std::string_view target = rest.substr(i + 1);
    if (target.size() < size) break;
    if (rest[i] == ' ' && target.size() == size && IsInPlace(rest.substr(0, i), target)) return i;
    if (rest[i] != '/' || last != '/') ++size;
    last = rest[i];
  }
  return std::string_view::npos;
}

RecordReadings RecordReader::ReadingsOf(std::string_view field) const {
  RecordReadings readings;
  const std::string_view marker = MarkerOf(field);
  if (marker.empty()) return readings;
  const std::string_view rest = field.substr(marker.size());
  const std::size_t derived = FindDerivedTarget(rest);
  const auto add = [&](std::size_t blank) {
    readings.parts.push_back({marker, std::string(rest.substr(0, blank)),
                              std::string(rest.substr(blank + 1)), blank == derived});
  };
  if (derived != std::string_view::npos) {
    add(derived);
    if (marker != ObjectMarker) return {std::move(readings.parts), 1};
  }
  const std::size_t most = std::clamp<std::size_t>(kMostBytes / field.size(), 1, kMostReadings);
  for (std::size_t blank = rest.find(' ');
       blank != std::string_view::npos && readings.parts.size() < most;
       blank = rest.find(' ', blank + 1)) {
    if (blank != derived && BeginsLikeKey(rest.substr(blank + 1))) add(blank);
  }
  readings.likely = readings.parts.size();
  // From the last one on: a target seldom has blanks.
  for (std::size_t blank = rest.rfind(' ');
       blank != std::string_view::npos && readings.parts.size() < most;
       blank = blank == 0 ? std::string_view::npos : rest.rfind(' ', blank - 1)) {
    if (blank != derived && !BeginsLikeKey(rest.substr(blank + 1))) add(blank);
  }
  if (readings.likely == 0) readings.likely = readings.parts.size();
  if (derived != std::string_view::npos) readings.likely = 1;
  return readings;
}

std::optional<RecordParts> RecordReader::PartsOf(std::size_t index,
                                                 std::string_view element) const {
  const std::string_view marker = MarkerOf(element);
  if (marker.empty() || element == ArrayMarker) return std::nullopt;
  const std::string_view target = element.substr(marker.size());
  std::string name = std::to_string(index);
  const bool is_in_place = IsInPlace(name, target);
  return RecordParts{marker, std::move(name), std::string(target), is_in_place};
}

std::string RecordReader::MemberOf(std::string_view field) const {
  RecordReadings readings = ReadingsOf(field);
  if (readings.parts.empty()) return std::string(field);
  return std::move(readings.parts.front().name);
}

std::string MemberOfField(const std::string& key, std::string_view field) {
  return RecordReader(key).MemberOf(field);
}

bool IsDerivedKey(std::string_view key) { return StartsWith(key, InternalPrefix); }

}  // namespace ostrafel
