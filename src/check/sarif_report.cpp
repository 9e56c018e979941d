// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "check/report.h"
#include "text/json_text.h"
#include "text/utf8.h"

namespace ostrafel {

namespace {

constexpr const char* kBase = "STATICDATA";

// A path as a URI has it: all but what is never reserved is escaped.
std::string UriOf(const std::string& path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  constexpr std::string_view marks = "-._~/";
  std::string uri;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool is_letter = (byte | 0x20U) >= 'a' && (byte | 0x20U) <= 'z';
    if (is_letter || (byte >= '0' && byte <= '9') || marks.find(c) != std::string_view::npos) {
      uri += c;
    } else {
      uri += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
    }
  }
  return uri;
}

std::string FileUriOf(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return "file://" + UriOf(error ? path : absolute.lexically_normal().string());
}

// A message of one line, or a text of several. What comes from files is to be Printable: hardly any
// reader takes the lone surrogates that stand for other bytes in JSON.
void WriteText(JsonWriter* json, const char* name, const std::string& text) {
  json->Name(name);
  json->OpenObject();
  json->Member("text", text);
  json->Close();
}

void WriteRule(JsonWriter* json, const Rule& rule) {
  json->OpenObject();
  json->Member("id", rule.name);
  WriteText(json, "shortDescription", rule.summary);
  WriteText(json, "fullDescription", rule.explanation);
  WriteText(json, "help", rule.explanation);
  json->Name("defaultConfiguration");
  json->OpenObject();
  json->Name("enabled");
  json->Bool(rule.is_on);
  json->Member("level", NameOf(rule.level));
  json->Close();
  json->Close();
}

void WriteTool(JsonWriter* json) {
  json->Name("tool");
  json->OpenObject();
  json->Name("driver");
  json->OpenObject();
  json->Member("name", "ostrafel-check");
  json->Member("semanticVersion", OSTRAFEL_VERSION);
  json->Name("rules");
  json->OpenArray();
  for (const Rule& rule : Rules()) WriteRule(json, rule);
  json->Close();
  json->Close();
  json->Close();
}

// What is below StaticDataPath is relative to it, so that a report can be read on another machine.
// Findings of no file are the tree's.
void WriteArtifact(JsonWriter* json, const CheckOptions& options, const std::string& path) {
  const std::string relative = RelativePath(options, path);
  json->Name("artifactLocation");
  json->OpenObject();
  if (path.empty()) {
    json->Member("uri", "./");
  } else {
    json->Member("uri", relative == path ? FileUriOf(path) : UriOf(relative));
  }
  if (path.empty() || relative != path) json->Member("uriBaseId", kBase);
  json->Close();
}

void WriteRegion(JsonWriter* json, const Position& position) {
  if (position.line == 0) return;
  json->Name("region");
  json->OpenObject();
  json->Name("startLine");
  json->Number(position.line);
  json->Name("startColumn");
  json->Number(position.column);
  json->Close();
}

// The members of a location.
void WritePlace(JsonWriter* json, const CheckOptions& options, const Place& place) {
  json->Name("physicalLocation");
  json->OpenObject();
  WriteArtifact(json, options, place.path);
  WriteRegion(json, place.position);
  json->Close();
  if (!place.pointer) return;
  json->Name("logicalLocations");
  json->OpenArray();
  json->OpenObject();
  json->Member("fullyQualifiedName", Printable(*place.pointer));
  json->Close();
  json->Close();
}

void WriteRelated(JsonWriter* json, const CheckOptions& options,
                  const std::vector<Related>& related) {
  if (related.empty()) return;
  json->Name("relatedLocations");
  json->OpenArray();
  for (const Related& one : related) {
    json->OpenObject();
    WritePlace(json, options, one.place);
    WriteText(json, "message", Printable(one.message));
    json->Close();
  }
  json->Close();
}

// Tells a finding from others, on any machine and after edits of other lines: FNV-1a of 64 bits
// over rule, path and pointer. (std::hash differs from one library to the next.)
std::string FingerprintOf(const CheckOptions& options, const Finding& finding) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  const std::array<std::string, 3> texts = {RuleOf(finding.rule).name,
                                            RelativePath(options, finding.place.path),
                                            finding.place.pointer.value_or("")};
  for (const std::string& text : texts) {
    for (const char c : text + '\0') {
      hash ^= static_cast<unsigned char>(c);
      hash *= 0x100000001b3U;
    }
  }
  std::string digits(16, '0');
  for (std::size_t i = digits.size(); i-- > 0; hash >>= 4U)
    digits[i] = "0123456789abcdef"[hash & 0xFU];
  return digits;
}

void WriteResult(JsonWriter* json, const CheckOptions& options, const Finding& finding) {
  const Rule& rule = RuleOf(finding.rule);
  json->OpenObject();
  json->Member("ruleId", rule.name);
  json->Name("ruleIndex");
  json->Number(static_cast<std::size_t>(rule.id));
  json->Member("level", NameOf(rule.level));
  WriteText(json, "message", Printable(finding.message));
  json->Name("locations");
  json->OpenArray();
  json->OpenObject();
  WritePlace(json, options, finding.place);
  json->Close();
  json->Close();
  WriteRelated(json, options, finding.related);
  json->Name("partialFingerprints");
  json->OpenObject();
  json->Member("rulePathPointer/v1", FingerprintOf(options, finding));
  json->Close();
  json->Close();
}

void WriteBase(JsonWriter* json, const CheckOptions& options) {
  json->Name("originalUriBaseIds");
  json->OpenObject();
  json->Name(kBase);
  json->OpenObject();
  // A base ends with a slash; StaticDataPath may have several there.
  json->Member("uri", FileUriOf(options.static_data_path + "/"));
  json->Close();
  json->Close();
}

// The entries of the baseline that accept nothing are no results: they are said of the run.
void WriteInvocation(JsonWriter* json, const Report& report) {
  if (report.unused_entries.empty()) return;
  json->Name("invocations");
  json->OpenArray();
  json->OpenObject();
  json->Name("executionSuccessful");
  json->Bool(true);
  json->Name("toolExecutionNotifications");
  json->OpenArray();
  for (const BaselineEntry& entry : report.unused_entries) {
    json->OpenObject();
    json->Member("level", "note");
    WriteText(json, "message", "nothing is accepted by this entry: " + BaselineLine(entry));
    json->Close();
  }
  json->Close();
  json->Close();
  json->Close();
}

void WriteRun(JsonWriter* json, const CheckOptions& options, const Report& report) {
  json->OpenObject();
  WriteTool(json);
  WriteBase(json, options);
  json->Member("columnKind", "unicodeCodePoints");
  WriteInvocation(json, report);
  json->Name("results");
  json->OpenArray();
  for (const Finding& finding : report.findings) WriteResult(json, options, finding);
  json->Close();
  json->Close();
}

}  // namespace

std::string SarifReport(const CheckOptions& options, const Report& report) {
  JsonWriter json;
  json.OpenObject();
  json.Member("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
  json.Member("version", "2.1.0");
  json.Name("runs");
  json.OpenArray();
  WriteRun(&json, options, report);
  json.Close();
  json.Close();
  return json.Finish();
}

}  // namespace ostrafel
