// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <map>

#include "diff/change_plan.h"
#include "diff/comparison.h"
#include "diff/report.h"
#include "diff/resources.h"
#include "text/utf8.h"
#include "tool/grouped.h"

namespace ostrafel {

namespace {

struct Numbers {
  std::size_t keys = 0;  // that differ
  std::size_t missing = 0;
  std::size_t extra = 0;
  std::size_t changed = 0;
};

std::size_t& NumberOf(Change change, Numbers* numbers) {
  switch (change) {
    case Change::kMissing:
      return numbers->missing;
    case Change::kExtra:
      return numbers->extra;
    case Change::kChanged:
      break;
  }
  return numbers->changed;
}

// A whole key counts with all its records.
void Count(const DiffReport& report, const KeyChange& change, Numbers* numbers) {
  ++numbers->keys;
  for (const Difference* at = change.begin; at != change.end; ++at) {
    if (std::holds_alternative<WholeKey>(at->record)) {
      numbers->missing += CountRecords(report.wanted, at->key);
      numbers->extra += CountRecords(report.stored, at->key);
    } else {
      ++NumberOf(at->change, numbers);
    }
  }
}

std::string Column(std::size_t number, std::size_t width) {
  std::string text = Grouped(number);
  if (text.size() < width) text.insert(0, width - text.size(), ' ');
  return text;
}

std::size_t CountAll(const Server& store) {
  std::size_t records = 0;
  for (const auto& [key, value] : store.keys) records += CountRecords(value);
  return records;
}

}  // namespace

std::string DiffSummary(const DiffReport& report) {
  if (report.applied && report.applied->transactions > 0) {
    std::string text = "changed " + Counted(report.applied->keys, "key") + ", " +
                       Counted(report.applied->records, "record");
    if (report.applied->transactions > 1) {
      text += " in " + Counted(report.applied->transactions, "transaction") +
              ": each resource at once, but not all of them";
    }
    return text;
  }
  if (report.differences.empty()) {
    return "equal: " + Counted(report.files, "file") + ", " +
           Counted(report.wanted.keys.size(), "key") + ", " +
           Counted(CountAll(report.wanted), "record");
  }
  Numbers numbers;
  for (const KeyChange& change : GroupByKey(report.differences)) Count(report, change, &numbers);
  return Counted(numbers.keys, "key") + (numbers.keys == 1 ? " differs" : " differ") +
         "; records: " + Grouped(numbers.missing) + " missing, " + Grouped(numbers.extra) +
         " extra, " + Grouped(numbers.changed) + " changed";
}

std::string DiffStat(const DiffReport& report) {
  if (report.applied) return DiffSummary(report) + "\n";
  std::map<std::string, Numbers> by_resource;
  for (const KeyChange& change : GroupByKey(report.differences)) {
    Count(report, change,
          &by_resource[ResourceOf(change.begin->key, report.stored, report.wanted)]);
  }
  std::string text;
  if (!by_resource.empty()) text = "  keys  missing    extra  changed  resource\n";
  for (const auto& [resource, numbers] : by_resource) {
    text += Column(numbers.keys, 6) + Column(numbers.missing, 9) + Column(numbers.extra, 9) +
            Column(numbers.changed, 9) + "  " + Printable(resource) + "\n";
  }
  return text + DiffSummary(report) + "\n";
}

}  // namespace ostrafel
