// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <optional>
#include <utility>

#include "check/report.h"
#include "text/json_text.h"

namespace ostrafel {

namespace {

void WritePlace(const CheckOptions& options, const Place& place, JsonWriter* json) {
  std::optional<std::string> file;
  if (!place.path.empty()) file = RelativePath(options, place.path);
  json->OptionalMember("file", file);
  json->PositionMember("line", place.position.line);
  json->PositionMember("column", place.position.column);
  json->OptionalMember("pointer", place.pointer);
}

void WritePlayed(const std::string& action, const Played& played, JsonWriter* json) {
  json->NumberMember(action + "_status", static_cast<std::size_t>(played.status));
  json->Member(action + "_messages", played.messages);
}

void WriteUnusedEntries(const Report& report, JsonWriter* json) {
  json->Name("unused_baseline");
  json->OpenArray();
  for (const BaselineEntry& entry : report.unused_entries) {
    json->OpenObject();
    json->Member("rule", entry.rule);
    json->OptionalMember(
        "file", entry.path.empty() ? std::nullopt : std::optional<std::string>(entry.path));
    json->Member("pointer", entry.pointer);
    json->Close();
  }
  json->Close();
}

void WriteSummary(const Report& report, JsonWriter* json) {
  json->Name("summary");
  json->OpenObject();
  json->NumberMember("files", report.files);
  json->NumberMember("keys", report.keys);
  json->NumberMember("records", report.records);
  json->NumberMember("errors", CountOf(report, Level::kError));
  json->NumberMember("warnings", CountOf(report, Level::kWarning));
  json->NumberMember("notes", CountOf(report, Level::kNote));
  WritePlayed("create", report.create, json);
  WritePlayed("update", report.update, json);
  WriteUnusedEntries(report, json);
  json->Close();
}

void WriteFinding(const CheckOptions& options, const Finding& finding, JsonWriter* json) {
  const Rule& rule = RuleOf(finding.rule);
  json->OpenObject();
  json->Member("rule", rule.name);
  json->Member("level", NameOf(rule.level));
  WritePlace(options, finding.place, json);
  json->OptionalMember("key", finding.key);
  json->Member("message", finding.message);
  json->Name("related");
  json->OpenArray();
  for (const Related& related : finding.related) {
    json->OpenObject();
    WritePlace(options, related.place, json);
    json->Member("message", related.message);
    json->Close();
  }
  json->Close();
  json->Close();
}

// The findings in the order of what stands in "file": a path that is not below StaticDataPath may
// stand elsewhere in theirs.
std::vector<const Finding*> InOrder(const CheckOptions& options, const Findings& findings) {
  std::vector<std::pair<std::string, const Finding*>> files;
  files.reserve(findings.size());
  for (const Finding& finding : findings) {
    files.emplace_back(RelativePath(options, finding.place.path), &finding);
  }
  std::stable_sort(files.begin(), files.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<const Finding*> result;
  result.reserve(files.size());
  for (const auto& [file, finding] : files) result.push_back(finding);
  return result;
}

}  // namespace

std::string JsonReport(const CheckOptions& options, const Report& report) {
  JsonWriter json;
  json.OpenObject();
  json.NumberMember("version", 1);
  WriteSummary(report, &json);
  json.Name("findings");
  json.OpenArray();
  for (const Finding* finding : InOrder(options, report.findings)) {
    WriteFinding(options, *finding, &json);
  }
  json.Close();
  json.Close();
  return json.Finish();
}

}  // namespace ostrafel
